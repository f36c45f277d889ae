// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginFactory.h>

/// A library with a flaw, chosen by the build.
HELVANTINE_PLUGIN_EXPORT const helvantine::PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    static const helvantine::PluginFactoryInfo s_info = {{}, "Refused", REFUSED_VERSION};
    return REFUSED_NULL ? nullptr : &s_info;
}

#if defined(REFUSED_ENDLESS)
/// Doesn't look at the index, so there is no end to its classes.
HELVANTINE_PLUGIN_EXPORT void* helvantinePluginQuery(int, int)
{
    static helvantine::PluginInfo s_info = {helvantine::PluginEffect, {}, "Test/Endless", "Endless", true};
    return &s_info;
}
#endif
