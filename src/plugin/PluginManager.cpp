// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginManager.h>

#include "plugin/PluginGate.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Report.h>
#include <helvantine/host/Application.h>

namespace helvantine
{

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
    const PluginManager* manager = g_application ? g_application->getPluginManager() : nullptr;
    return manager ? manager->createPlugin(id) : nullptr;
}

} // namespace helvantine
