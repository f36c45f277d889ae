// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureBlendEffect.h>
#include <helvantine/effects2d/TextureBlurEffect.h>
#include <helvantine/effects2d/TextureColorCorrectionEffect.h>
#include <helvantine/effects2d/TextureDOFEffect.h>
#include <helvantine/effects2d/TextureDisplacementEffect.h>
#include <helvantine/effects2d/TextureDitherEffect.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/effects2d/TextureGlowEffect.h>
#include <helvantine/effects2d/TextureLensflareEffect.h>
#include <helvantine/effects2d/TextureRgbDisplacementEffect.h>
#include <helvantine/effects2d/TextureSSAOEffect.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/plugin/PluginFactory.h>
#include <helvantine/resource/MaterialShaderResource.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/ShaderNode.h>
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

/// The classes that can be created by id. CopyBackbufferEffect and TestEffect aren't among them, deliberately: only
/// code makes them. An index holds for one loaded library: nothing stores it.
constexpr QueryEntry s_classes[] = {
    s_entry<EffectNode>,
    s_entry<AbsNode>,
    s_entry<AddNode>,
    s_entry<AnimatedResourceNode>,
    s_entry<BoolNode>,
    s_entry<ClampNode>,
    s_entry<ColorNode>,
    s_entry<ConvertFloatToIntNode>,
    s_entry<ConvertFloatToStringNode>,
    s_entry<ConvertIntToFloatNode>,
    s_entry<ConvertIntToStringNode>,
    s_entry<ConvertStringToFloatNode>,
    s_entry<ConvertStringToIntNode>,
    s_entry<CosNode>,
    s_entry<DistanceNode>,
    s_entry<DivNode>,
    s_entry<FloatNode>,
    s_entry<IntNode>,
    s_entry<MaterialShaderNode>,
    s_entry<MulNode>,
    s_entry<ResourceNode>,
    s_entry<ShaderNode>,
    s_entry<SinNode>,
    s_entry<StringNode>,
    s_entry<SubNode>,
    s_entry<TimeNode>,
    s_entry<ToDegreesNode>,
    s_entry<ToRadiansNode>,
    s_entry<Vec2BuilderNode>,
    s_entry<Vec2Node>,
    s_entry<Vec2SplitterNode>,
    s_entry<Vec3BuilderNode>,
    s_entry<Vec3Node>,
    s_entry<Vec3SplitterNode>,
    s_entry<Vec4BuilderNode>,
    s_entry<Vec4Node>,
    s_entry<Vec4SplitterNode>,
    s_entry<Layer>,
    s_entry<CameraEffect>,
    s_entry<ClearScreenEffect>,
    s_entry<RenderTargetEffect>,
    s_entry<RayMarchingEffect>,
    s_entry<TextureEffect>,
    s_entry<TextureBlendEffect>,
    s_entry<TextureColorCorrectionEffect>,
    s_entry<TextureBlurEffect>,
    s_entry<TextureGlowEffect>,
    s_entry<TextureDOFEffect>,
    s_entry<TextureSSAOEffect>,
    s_entry<TextureDitherEffect>,
    s_entry<TextureDisplacementEffect>,
    s_entry<TextureRgbDisplacementEffect>,
    s_entry<TextureLensflareEffect>,
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
