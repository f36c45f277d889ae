// SPDX-License-Identifier: MIT
#include <helvantine/plugin/PluginFactory.h>

#include <iterator>

using namespace helvantine;

/// A library that offers a class of the test plugin, and one id twice.
HELVANTINE_PLUGIN_EXPORT const PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    static const PluginFactoryInfo s_info = {stringToUniqueId("A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1B00"), "Twin",
                                             pluginApiVersion};
    return &s_info;
}

HELVANTINE_PLUGIN_EXPORT void* helvantinePluginQuery(int request, int index)
{
    static const char* const ownId = "A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1B01";
    static PluginInfo s_infos[] = {
        {PluginEffect, stringToUniqueId("A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1A01"), "Twin/Taken", "Taken", true},
        {PluginEffect, stringToUniqueId(ownId), "Twin/Own", "Own", true},
        {PluginEffect, stringToUniqueId(ownId), "Twin/Again", "Again", true},
    };
    const bool isClass = index >= 0 && index < static_cast<int>(std::size(s_infos));
    return isClass && request == PluginRequestInfo ? &s_infos[index] : nullptr;
}
