// SPDX-License-Identifier: MIT
// What the runtime sees of this library: its record, and its classes by number.
#include "BeatNode.h"
#include "PaletteImporter.h"
#include "PaletteResource.h"
#include "SilkEffect.h"

#include <helvantine/plugin/PluginFactory.h>

#include <iterator>

using namespace helvantine;

namespace
{

struct Entry
{
    const PluginInfo* info;
    Plugin* (*create)();
};

template <class T>
constexpr Entry s_entry = {&T::s_plugininfo, []() -> Plugin* { return new T; }};

constexpr Entry s_classes[] = {
    s_entry<silk::SilkEffect>,
    s_entry<silk::BeatNode>,
    s_entry<silk::PaletteResource>,
    s_entry<silk::PaletteImporter>,
};

} // namespace

HELVANTINE_PLUGIN_EXPORT const PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    static const PluginFactoryInfo s_info = {stringToUniqueId("5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A00"), "Silk",
                                             pluginApiVersion};
    return &s_info;
}

HELVANTINE_PLUGIN_EXPORT void* helvantinePluginQuery(int request, int index)
{
    if (index < 0 || index >= static_cast<int>(std::size(s_classes)))
        return nullptr;
    switch (request) {
    case PluginRequestInfo:
        return const_cast<PluginInfo*>(s_classes[index].info);
    case PluginRequestCreate:
        return s_classes[index].create();
    default:
        return nullptr;
    }
}
