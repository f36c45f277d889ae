// SPDX-License-Identifier: MIT
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TestEffect.h>
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
#include <helvantine/object/CatalogueClasses.h>
#include <helvantine/resource/MaterialShaderResource.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/resource/ResourceImporter.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Effect.h>
#include <helvantine/timeline/Effect2D.h>
#include <helvantine/timeline/Layer.h>

namespace helvantine
{

const TypeInfo Plugin::m_typeInfo = {"Plugin", &TypedObject::m_typeInfo};

#define HELVANTINE_CLASS HELVANTINE_PLUGIN_RECORDS
#include "ClassCatalogue.inc"

} // namespace helvantine
