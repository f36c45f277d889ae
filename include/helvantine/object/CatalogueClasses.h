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
#define HELVANTINE_IDENTITY(Class)                                                                           \
    struct HELVANTINE_FX_API Class                                                                           \
    {                                                                                                        \
        static const TypeInfo m_typeInfo;                                                                    \
        static const PluginInfo s_plugininfo;                                                                \
    };

// clang-format off
HELVANTINE_IDENTITY(FlareEffect)
HELVANTINE_IDENTITY(LightEffect)
HELVANTINE_IDENTITY(MaterialEffect)
HELVANTINE_IDENTITY(SceneEffect)
HELVANTINE_IDENTITY(SceneRendererEffect)
HELVANTINE_IDENTITY(SceneLensflareEffect)
HELVANTINE_IDENTITY(SceneMeshEffect)
HELVANTINE_IDENTITY(SceneNodeEffect)
HELVANTINE_IDENTITY(SceneRenderableEffect)
HELVANTINE_IDENTITY(SceneSkyboxEffect)
HELVANTINE_IDENTITY(SoundEffect)
HELVANTINE_IDENTITY(SphereDummyEffect)
HELVANTINE_IDENTITY(BoxMeshEffect)
HELVANTINE_IDENTITY(Effect3D)
HELVANTINE_IDENTITY(SceneResource)
HELVANTINE_IDENTITY(SoundResource)
HELVANTINE_IDENTITY(SceneResourceImporter)
HELVANTINE_IDENTITY(SoundResourceImporter)
// clang-format on

#undef HELVANTINE_IDENTITY

} // namespace helvantine
