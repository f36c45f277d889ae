// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Plugin.h>

namespace helvantine
{

// Classes of the catalogue that have an identity and no code yet: documents can name them, nothing creates
// them.
//
// Whoever builds one removes its line here, includes the new header in src/object/ClassCatalogue.cpp and adds
// the class, if it can be created by id, to the table in src/plugin/PluginQuery.cpp. The row in
// src/object/ClassCatalogue.inc defines the records from then on as it does now.
// clang-format off
struct HELVANTINE_FX_API FlareEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API LightEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API MaterialEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API RayMarchingEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneRendererEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneLensflareEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneMeshEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneNodeEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneRenderableEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneSkyboxEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureBlendEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureBlurEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureColorCorrectionEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureDisplacementEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureDOFEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureRgbDisplacementEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureDitherEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureGlowEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureLensflareEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TextureSSAOEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SoundEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SphereDummyEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API BoxMeshEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Effect3D { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TestEffect { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API AbsNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API AddNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API AnimatedResourceNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API BoolNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ClampNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ColorNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API CosNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API DistanceNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API DivNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API FloatNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API IntNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API MaterialShaderNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API MulNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ResourceNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ShaderNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SinNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API StringNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SubNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API TimeNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ToDegreesNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ToRadiansNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec2Node { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec2BuilderNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec2SplitterNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec3Node { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec3BuilderNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec3SplitterNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec4Node { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec4BuilderNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API Vec4SplitterNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ConvertIntToFloatNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ConvertIntToStringNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ConvertFloatToIntNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ConvertFloatToStringNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ConvertStringToIntNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API ConvertStringToFloatNode { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneResource { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SoundResource { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SceneResourceImporter { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
struct HELVANTINE_FX_API SoundResourceImporter { static const TypeInfo m_typeInfo; static const PluginInfo s_plugininfo; };
// clang-format on

} // namespace helvantine
