// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/plugin/PluginFactory.h>
#include <helvantine/resource/MaterialShaderResource.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Layer.h>

#include <iterator>
#include <new>

namespace helvantine
{

namespace
{

struct QueryEntry
{
    const PluginInfo* info;
    Plugin* (*create)();
};

template <class T>
constexpr QueryEntry s_entry = {&T::s_plugininfo, []() -> Plugin* { return new (std::nothrow) T; }};

/// The classes that can be created by id. An index holds for one loaded library: nothing stores it.
constexpr QueryEntry s_classes[] = {
    s_entry<EffectNode>,
    s_entry<Layer>,
    s_entry<CameraEffect>,
    s_entry<ClearScreenEffect>,
    s_entry<RenderTargetEffect>,
    s_entry<TextureEffect>,
    s_entry<MaterialShaderResource>,
    s_entry<RenderTargetResource>,
    s_entry<RenderTargetResourceImporter>,
    s_entry<ShaderResource>,
    s_entry<TextureResource>,
    s_entry<TextureResourceImporter>,
};

} // namespace

HELVANTINE_PLUGIN_EXPORT const PluginFactoryInfo* helvantinePluginFactoryQuery()
{
    static const PluginFactoryInfo s_info = {stringToUniqueId(runtimeLibraryId), "Fx", pluginApiVersion};
    return &s_info;
}

HELVANTINE_PLUGIN_EXPORT void* helvantinePluginQuery(int request, int index)
{
    if (index < 0 || index >= static_cast<int>(std::size(s_classes)))
        return nullptr;
    const QueryEntry& entry = s_classes[index];
    switch (request) {
    case PluginRequestInfo:
        return const_cast<PluginInfo*>(entry.info);
    case PluginRequestCreate:
        return entry.create();
    default:
        return nullptr;
    }
}

} // namespace helvantine
