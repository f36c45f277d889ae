// SPDX-License-Identifier: MIT
#include "ResourceUse.h"

#include <helvantine/core/TypedObject.h>
#include <helvantine/effects2d/RayMarchingEffect.h>

#include <algorithm>
#include <string_view>

namespace helvantine::tool
{

namespace
{

constexpr const char* shader = "ShaderResource";
constexpr const char* target = "RenderTargetResource";
constexpr const char* texture = "TextureResource";

constexpr ResourceUse uses[] = {
    {"MaterialShaderNode", "Default Pass", {shader}},
    {"MaterialShaderNode", "DepthNormal Pass", {shader}},
    {"MaterialShaderNode", "Shadow Pass", {shader}},
    {"RayMarchingEffect", "Shader", {shader}, false, &RayMarchingEffect::s_programBindings},
    {"RenderTargetEffect", "Render Target", {target}},
    {"TextureBlendEffect", "Texture-2", {texture}},
    {"TextureBlurEffect", "Horizontal Blur Target", {target}},
    {"TextureBlurEffect", "Vertical Blur Target", {target}},
    {"TextureDOFEffect", "Blur Source", {target}},
    {"TextureDOFEffect", "Depth Source", {target}, true},
    {"TextureDOFEffect", "Texture", {target}},
    {"TextureDisplacementEffect", "Displacement Texture", {texture}},
    {"TextureEffect", "Texture", {texture, target}},
    {"TextureGlowEffect", "Glow Target", {target}},
    {"TextureGlowEffect", "Horizontal Blur Target", {target}},
    {"TextureGlowEffect", "Vertical Blur Target", {target}},
    {"TextureRgbDisplacementEffect", "RgbDisplacement Texture", {texture}},
    {"TextureSSAOEffect", "SSAO HBlur Target", {target}},
    {"TextureSSAOEffect", "SSAO VBlur Target", {target}},
    {"TextureSSAOEffect", "Texture", {target}, true},
};

// The rows of a class stand together.
constexpr EffectDraw draws[] = {
    {"TextureBlurEffect", "Vertical Blur Target", {"Texture", "Horizontal Blur Target"}},
    {"TextureBlurEffect", nullptr, {"Horizontal Blur Target"}},
    {"TextureDOFEffect", nullptr, {"Texture", "Depth Source", "Blur Source"}},
    {"TextureEffect", nullptr, {"Texture"}},
    {"TextureGlowEffect", "Glow Target", {"Texture"}},
    {"TextureGlowEffect", "Vertical Blur Target", {"Glow Target", "Horizontal Blur Target"}},
    {"TextureGlowEffect", nullptr, {"Texture", "Horizontal Blur Target"}},
    {"TextureSSAOEffect", "SSAO VBlur Target", {"Texture"}},
    {"TextureSSAOEffect", "SSAO HBlur Target", {"Texture", "SSAO VBlur Target"}},
};

} // namespace

std::span<const ResourceUse> getResourceUses()
{
    return uses;
}

const ResourceUse* findResourceUse(const TypeInfo& owner, const std::string& property)
{
    for (const TypeInfo* type = &owner; type; type = type->parent) {
        for (const ResourceUse& use : uses) {
            if (std::string_view(use.owner) == type->name && use.property == property)
                return &use;
        }
    }
    return nullptr;
}

std::span<const EffectDraw> getEffectDraws(const TypeInfo& effect)
{
    for (const TypeInfo* type = &effect; type; type = type->parent) {
        const auto isOwn = [&](const EffectDraw& draw) { return std::string_view(draw.owner) == type->name; };
        const auto first = std::find_if(std::begin(draws), std::end(draws), isOwn);
        if (first != std::end(draws))
            return {first, std::find_if_not(first, std::end(draws), isOwn)};
    }
    return {};
}

} // namespace helvantine::tool
