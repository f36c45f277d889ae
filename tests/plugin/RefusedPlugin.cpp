// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginFactory.h>

/// A library with one export and a flaw, chosen by the build.
HELVANTINE_PLUGIN_EXPORT const helvantine::PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    static const helvantine::PluginFactoryInfo s_info = {{}, "Refused", REFUSED_VERSION};
    return REFUSED_NULL ? nullptr : &s_info;
}
