// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginManager.h>

#include "plugin/PluginGate.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/NearestNames.h>
#include <helvantine/core/Report.h>
#include <helvantine/host/Application.h>

#include <algorithm>
#include <iterator>

namespace helvantine
{

namespace
{

PluginManager* getManager()
{
    return g_application ? g_application->getPluginManager() : nullptr;
}

std::vector<const PluginInfo*> getClasses(const PluginManager& manager, std::int32_t kind)
{
    std::vector<const PluginInfo*> result;
    for (const SmartRef<PluginFactory>& factory : manager.m_factories) {
        std::copy_if(factory->m_plugins.begin(), factory->m_plugins.end(), std::back_inserter(result),
                     [&](const PluginInfo* info) { return info->kind == kind; });
    }
    return result;
}

} // namespace

PluginManager::PluginManager() = default;

PluginManager::~PluginManager() = default;

bool PluginManager::init(const char* folder)
{
    PluginGate gate;
    for (const FileInfo& file : findFiles(folder, "*.dll", false)) {
        if (!gate.admits(file.path))
            continue;
        const SmartRef<PluginFactory> factory(createPluginFactory(file.path.c_str()));
        if (!factory)
            continue;
        reportTakenClasses(*factory);
        m_factories.push_back(factory);
    }
    return true;
}

void PluginManager::reportTakenClasses(const PluginFactory& factory) const
{
    for (const PluginInfo* info : factory.m_plugins) {
        if (const PluginFactory* owner = getPluginFactoryFromPlugin(info->id)) {
            reportProblem("plugin", factory.m_filename + ": class '" + (info->name ? info->name : "") +
                                        "' is taken from " + owner->m_filename +
                                        ", which offers its id as well");
        }
    }
}

bool PluginManager::containsPlugin(const UniqueId& id) const
{
    return getPluginFactoryFromPlugin(id) != nullptr;
}

Plugin* PluginManager::createPlugin(const UniqueId& id) const
{
    const PluginFactory* factory = getPluginFactoryFromPlugin(id);
    return factory ? factory->createPlugin(id) : nullptr;
}

PluginFactory* PluginManager::getPluginFactoryFromPlugin(const UniqueId& id) const
{
    for (const SmartRef<PluginFactory>& factory : m_factories) {
        if (factory->containsPlugin(id))
            return factory.get();
    }
    return nullptr;
}

const PluginInfo* PluginManager::findPlugin(std::int32_t kind, std::string_view menuPath) const
{
    for (const PluginInfo* info : getClasses(*this, kind)) {
        if (info->menuPath == menuPath)
            return info;
    }
    return nullptr;
}

PluginManager* createPluginManager(const char* folder)
{
    auto* manager = new PluginManager;
    if (manager->init(folder))
        return manager;
    delete manager;
    return nullptr;
}

Plugin* createPlugin(const UniqueId& id)
{
    const PluginManager* manager = getManager();
    return manager ? manager->createPlugin(id) : nullptr;
}

const PluginInfo* findPlugin(std::int32_t kind, std::string_view menuPath)
{
    const PluginManager* manager = getManager();
    if (const PluginInfo* info = manager ? manager->findPlugin(kind, menuPath) : nullptr)
        return info;
    std::vector<std::string> paths;
    for (const PluginInfo* known : manager ? getClasses(*manager, kind) : std::vector<const PluginInfo*>())
        paths.emplace_back(known->menuPath);
    reportProblem("plugin", "no library offers '" + std::string(menuPath) + '\'' +
                                describeNearestNames(menuPath, paths));
    return nullptr;
}

void reportMissingClass(const UniqueId& classId, const TypeInfo& type)
{
    const PluginManager* manager = getManager();
    const bool isKnown = manager && manager->containsPlugin(classId);
    reportProblem("plugin", "class " + uniqueIdToString(classId) +
                                (isKnown ? std::string(" is no ") + type.name : " is offered by no library"));
}

} // namespace helvantine
