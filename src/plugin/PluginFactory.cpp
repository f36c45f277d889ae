// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginFactory.h>

#include "plugin/PluginBorder.h"
#include "plugin/RuntimePath.h"

#include <helvantine/core/Library.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>

#include <algorithm>
#include <filesystem>

namespace helvantine
{

namespace
{

constexpr char s_ownAddress = 0;

/// Whether the file bears the runtime's name and is another file.
bool isCopyOfRuntime(const std::string& path)
{
    const std::string own = getRuntimePath();
    std::error_code error;
    const bool isSame = std::filesystem::equivalent(path, own, error);
    return !error && !isSame && getFilename(path.c_str()) == getFilename(own.c_str());
}

bool refuse(const std::string& filename, const std::string& why)
{
    reportProblem("plugin", filename + ": " + why);
    return false;
}

/// A class without a name is still told of.
const char* nameOf(const PluginInfo& info)
{
    return info.name ? info.name : "";
}

bool refuseCopyOfRuntime(const std::string& filename)
{
    return refuse(filename, "a second copy of the runtime, which runs from " + getRuntimePath());
}

} // namespace

std::string getRuntimePath()
{
    return getLibraryPath(&s_ownAddress);
}

PluginFactory::PluginFactory() = default;

PluginFactory::~PluginFactory()
{
    if (m_module)
        PluginBorder(m_filename, {"it was unloaded"}).cross([&] { freeLibrary(m_module); });
}

bool PluginFactory::init(const char* path)
{
    m_filename = makeValidFilename(path);
    // Told by its name, a copy isn't even loaded; one under another name is told by its record.
    if (isCopyOfRuntime(m_filename))
        return refuseCopyOfRuntime(m_filename);
    PluginBorder(m_filename, {"it was loaded"}).cross([&] { m_module = loadLibrary(m_filename.c_str()); });
    return m_module && queryInfo() && queryClasses();
}

bool PluginFactory::queryInfo()
{
    const auto factoryQuery =
        reinterpret_cast<PluginFactoryQuery>(getLibrarySymbol(m_module, "helvantinePluginFactoryQuery"));
    if (!factoryQuery)
        return false;
    if (!PluginBorder(m_filename, {"it was asked for its record"}).cross([&] { m_info = factoryQuery(); }))
        return false;
    if (!m_info)
        return refuse(m_filename, "the library gives no record of itself");
    if (m_info->apiVersion != pluginApiVersion) {
        return refuse(m_filename, "interface version " + std::to_string(m_info->apiVersion) + ", expected " +
                                      std::to_string(pluginApiVersion));
    }
    m_isRuntime = m_info->id == stringToUniqueId(runtimeLibraryId);
    if (m_isRuntime && getLibraryPath(m_info) != getRuntimePath())
        return refuseCopyOfRuntime(m_filename);
    return true;
}

bool PluginFactory::queryClasses()
{
    m_pluginQuery = reinterpret_cast<PluginQuery>(getLibrarySymbol(m_module, "helvantinePluginQuery"));
    if (!m_pluginQuery)
        return refuse(m_filename, "the library doesn't export helvantinePluginQuery");
    PluginBorder border(m_filename, {"it was asked for its classes"});
    for (;;) {
        const PluginInfo* info = nullptr;
        const auto index = static_cast<int>(m_plugins.size());
        if (!border.cross(
                [&] { info = static_cast<const PluginInfo*>(m_pluginQuery(PluginRequestInfo, index)); }))
            return false;
        if (!info)
            return true;
        if (m_plugins.size() == s_maxClasses)
            return refuse(m_filename, "offers more than " + std::to_string(s_maxClasses) + " classes");
        if (containsPlugin(info->id))
            reportProblem("plugin",
                          m_filename + ": class '" + nameOf(*info) + "' has the id of one before it");
        m_plugins.push_back(info);
    }
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
            return createPlugin(static_cast<int>(i));
    }
    return nullptr;
}

Plugin* PluginFactory::createPlugin(int index) const
{
    const auto create = [&] { return static_cast<Plugin*>(m_pluginQuery(PluginRequestCreate, index)); };
    if (m_isRuntime)
        return create();
    Plugin* plugin = nullptr;
    const char* name = nameOf(*m_plugins[static_cast<std::size_t>(index)]);
    PluginBorder border(m_filename, {"an object of class '", name, "' was made"});
    if (border.cross([&] { plugin = create(); }) && !plugin)
        reportProblem("plugin", m_filename + ": class '" + name + "' makes no object");
    return plugin;
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
