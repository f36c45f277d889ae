// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginFactory.h>

/// Nobody defines it: the loader refuses this library.
const helvantine::PluginFactoryInfo* functionOfAnotherVersion();

HELVANTINE_PLUGIN_EXPORT const helvantine::PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    return functionOfAnotherVersion();
}
