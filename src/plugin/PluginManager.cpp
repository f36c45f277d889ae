// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginManager.h>

#include <helvantine/core/FileUtil.h>
#include <helvantine/host/Application.h>

namespace helvantine
{

PluginManager::PluginManager() = default;

PluginManager::~PluginManager() = default;

bool PluginManager::init(const char* folder)
{
    for (const FileInfo& file : findFiles(folder, "*.dll", false)) {
        if (PluginFactory* factory = createPluginFactory(file.path.c_str()))
            m_factories.emplace_back(factory);
    }
    return true;
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
