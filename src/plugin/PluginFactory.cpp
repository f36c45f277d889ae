// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginFactory.h>

#include <helvantine/core/Library.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>

#include <algorithm>

namespace helvantine
{

namespace
{

bool refuse(const std::string& filename, const std::string& why)
{
    reportProblem("plugin", filename + ": " + why);
    return false;
}

} // namespace

PluginFactory::PluginFactory() = default;

PluginFactory::~PluginFactory()
{
    freeLibrary(m_module);
}

bool PluginFactory::init(const char* path)
{
    m_filename = makeValidFilename(path);
    m_module = loadLibrary(m_filename.c_str());
    if (!m_module)
        return false;
    const auto factoryQuery =
        reinterpret_cast<PluginFactoryQuery>(getLibrarySymbol(m_module, "helvantinePluginFactoryQuery"));
    if (!factoryQuery)
        return false;
    m_info = factoryQuery();
    if (!m_info)
        return refuse(m_filename, "the library gives no record of itself");
    if (m_info->apiVersion != pluginApiVersion) {
        return refuse(m_filename, "interface version " + std::to_string(m_info->apiVersion) + ", expected " +
                                      std::to_string(pluginApiVersion));
    }
    m_pluginQuery = reinterpret_cast<PluginQuery>(getLibrarySymbol(m_module, "helvantinePluginQuery"));
    if (!m_pluginQuery)
        return refuse(m_filename, "the library doesn't export helvantinePluginQuery");
    while (const void* info = m_pluginQuery(PluginRequestInfo, static_cast<int>(m_plugins.size())))
        m_plugins.push_back(static_cast<const PluginInfo*>(info));
    return true;
}

bool PluginFactory::containsPlugin(const UniqueId& id) const
{
    return std::any_of(m_plugins.begin(), m_plugins.end(),
                       [&](const PluginInfo* info) { return info->id == id; });
}

Plugin* PluginFactory::createPlugin(const UniqueId& id) const
{
    if (!m_pluginQuery)
        return nullptr;
    for (std::size_t i = 0; i < m_plugins.size(); ++i) {
        if (m_plugins[i]->id == id)
            return static_cast<Plugin*>(m_pluginQuery(PluginRequestCreate, static_cast<int>(i)));
    }
    return nullptr;
}

PluginFactory* createPluginFactory(const char* path)
{
    auto* factory = new PluginFactory;
    if (factory->init(path))
        return factory;
    delete factory;
    return nullptr;
}

} // namespace helvantine
