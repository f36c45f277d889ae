// SPDX-License-Identifier: MIT
#include "Gallery.h"

#include "Lettering.h"
#include "Paint.h"
#include "Still.h"
#include "Tunnel.h"

#include <helvantine/core/Text.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/effects2d/TextureBlendEffect.h>
#include <helvantine/effects2d/TextureBlurEffect.h>
#include <helvantine/effects2d/TextureColorCorrectionEffect.h>
#include <helvantine/effects2d/TextureDOFEffect.h>
#include <helvantine/effects2d/TextureDisplacementEffect.h>
#include <helvantine/effects2d/TextureDitherEffect.h>
#include <helvantine/effects2d/TextureGlowEffect.h>
#include <helvantine/effects2d/TextureLensflareEffect.h>
#include <helvantine/effects2d/TextureRgbDisplacementEffect.h>
#include <helvantine/effects2d/TextureSSAOEffect.h>
#include <helvantine/schematics/ShaderNode.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <map>

using namespace helvantine;

namespace
{

constexpr Rect screen{0, 0, 960, 540};
constexpr Rect leftHalf{0, 0, 480, 540};
constexpr Rect rightHalf{480, 0, 480, 540};
constexpr Vec4 leftUv(0, 0, 0.5f, 1);
constexpr Vec4 rightUv(0.5f, 0, 1, 1);

/// What the rooms share. Only one room is open at a time, so they can use the same targets.
struct Supplies
{
    explicit Supplies(CompositionBuilder& on)
        : builder(on), still(on.addTexture("still.tga")), stillDepth(on.addTexture("still-depth.dds")),
          veil(on.addTexture("veil.tga")), white(on.addTexture("white.tga")),
          waves(on.addTexture("waves.tga")), scene(on.addRenderTarget("Scene", 1920, 1080)),
          depth(on.addRenderTarget("Depth", 640, 360, RenderTargetResource::RGBA32F)),
          first(on.addRenderTarget("First", 960, 540)), second(on.addRenderTarget("Second", 960, 540)),
          small(on.addRenderTarget("Small", 320, 180)), coarse(on.addRenderTarget("Coarse", 640, 360)),
          coarse2(on.addRenderTarget("Coarse, too", 640, 360))
    {
    }

    CompositionBuilder& builder;
    TextureResource* still;
    TextureResource* stillDepth;
    TextureResource* veil;
    TextureResource* white;
    TextureResource* waves;
    RenderTargetResource* scene;
    RenderTargetResource* depth;
    RenderTargetResource* first;
    RenderTargetResource* second;
    RenderTargetResource* small;
    RenderTargetResource* coarse;
    RenderTargetResource* coarse2;
};

/// Normals and depth of the still life, in a target for the effects that reckon with them.
void addDepth(Supplies& s, Effect& room)
{
    RenderTargetEffect& target = s.builder.addTargetEffect(room, "Normals and depth", s.depth);
    s.builder.addQuad(target, "Normals and depth", s.stillDepth, BlendMode::Solid, screen);
}

/// The still life in the target "Scene".
void addScene(Supplies& s, Effect& room)
{
    RenderTargetEffect& target = s.builder.addTargetEffect(room, "Scene", s.scene);
    s.builder.addQuad(target, "Still life", s.still, BlendMode::Solid, screen);
}

void addTexture(Supplies& s, Effect& room)
{
    Effect& quad = s.builder.addQuad(room, "Still life", s.still, BlendMode::Solid, screen);
    quad.animateProperty("UV-Rect", KeyModeBezier,
                         {{0, {0, 0, 1, 1}}, {1, {0, 0, 1, 1}}, {1.9f, {0.2f, 0.2f, 0.8f, 0.8f}}});
}

/// The names of the ways to blend, as the effect has them.
std::map<int32_t, std::string> getBlendLabels()
{
    const SmartRef<TextureBlendEffect> effect(new TextureBlendEffect);
    for (const SmartRef<PropertyGroup>& group : effect->m_inputGroups) {
        if (const PropertyBase* types = group->findProperty("Blend Type"))
            return types->m_enumLabels;
    }
    return {};
}

std::string getBlendLabelPath(int32_t type)
{
    return formatString("blend-%d.tga", type);
}

void addBlend(Supplies& s, Effect& room)
{
    for (const auto& [type, name] : getBlendLabels()) {
        const int row = type / 5;
        const Rect tile{static_cast<float>(type % 5) * 192, static_cast<float>(row) * 270, 192, 270};
        auto& blend =
            s.builder.addQuad<TextureBlendEffect>(room, name.c_str(), s.still, BlendMode::Solid, tile);
        blend.setProperty("UV-Rect", Vec4(0.3f, 0, 0.7f, 1));
        blend.setProperty("Texture-2", s.veil);
        blend.setProperty("Blend Type", type);
        s.builder.addQuad(room, "Name", s.builder.addTexture(getBlendLabelPath(type)),
                          BlendMode::Premultiplied, {tile.x + 6, tile.y + 4, 180, 30});
    }
}

/// Four grades of one picture, side by side; the last goes through all hues.
void addColorCorrection(Supplies& s, Effect& room)
{
    const struct
    {
        const char* name;
        float brightness, contrast, saturation, hue;
    } grades[] = {
        {"Grey", 1.1f, 1.2f, 0, 0},
        {"Vivid", 1.1f, 1.05f, 1.4f, 0},
        {"Cold", 1, 1, 0.8f, -130},
        {"All hues", 1, 1.1f, 1.1f, 0},
    };
    constexpr float share = 1.0f / static_cast<float>(std::size(grades));
    for (size_t i = 0; i < std::size(grades); ++i) {
        const float left = share * static_cast<float>(i);
        auto& effect = s.builder.addQuad<TextureColorCorrectionEffect>(
            room, grades[i].name, s.still, BlendMode::Solid, {960 * left, 0, 960 * share, 540});
        effect.setProperty("UV-Rect", Vec4(left, 0, left + share, 1));
        effect.setProperty("Brightness", grades[i].brightness);
        effect.setProperty("Contrast", grades[i].contrast);
        effect.setProperty("Saturation", grades[i].saturation);
        effect.setProperty("Hue", grades[i].hue);
        if (i + 1 == std::size(grades))
            effect.animateProperty("Hue", KeyModeLinear, {{0, 0}, {2, 360}});
    }
}

void addDither(Supplies& s, Effect& room)
{
    auto& color = s.builder.addQuad<TextureDitherEffect>(room, "Color", s.still, BlendMode::Solid, leftHalf);
    color.setProperty("UV-Rect", leftUv);
    auto& grey = s.builder.addQuad<TextureDitherEffect>(room, "Grey", s.still, BlendMode::Solid, rightHalf);
    grey.setProperty("UV-Rect", rightUv);
    grey.setProperty("Grayscale", true);
    for (Effect* effect : {static_cast<Effect*>(&color), static_cast<Effect*>(&grey)})
        effect->setProperty("Dither Scale", {240, 135});
}

void addDisplacement(Supplies& s, Effect& room)
{
    auto& effect =
        s.builder.addQuad<TextureDisplacementEffect>(room, "Waves", s.still, BlendMode::Solid, screen);
    effect.setProperty("Displacement Texture", s.waves);
    effect.setProperty("Wrap", "Mirror");
    effect.setProperty("U Power", 0.06f);
    effect.setProperty("V Power", 0.06f);
    effect.animateProperty("Displacement UV-Rect", KeyModeLinear,
                           {{0, {0, 0, 1.6f, 0.9f}}, {2, {0, -0.5f, 1.6f, 0.4f}}});
}

void addRgbDisplacement(Supplies& s, Effect& room)
{
    auto& effect =
        s.builder.addQuad<TextureRgbDisplacementEffect>(room, "Prism", s.still, BlendMode::Solid, screen);
    effect.setProperty("RgbDisplacement Texture", s.waves);
    effect.setProperty("RgbDisplacement UV-Rect", Vec4(0, 0, 1.6f, 0.9f));
    effect.setProperty("Wrap", "Mirror");
    const char* powers[] = {"U Power R", "V Power R", "U Power G", "V Power G", "U Power B", "V Power B"};
    const float most[] = {0.022f, 0, 0, 0.022f, -0.022f, -0.014f};
    for (size_t i = 0; i < std::size(powers); ++i)
        effect.animateProperty(powers[i], KeyModeBezier, {{0, 0}, {1, most[i]}, {2, 0}});
}

void addBlur(Supplies& s, Effect& room)
{
    auto& effect = s.builder.addQuad<TextureBlurEffect>(room, "Blur", s.still, BlendMode::Solid, screen);
    effect.setProperty("Vertical Blur Target", s.first);
    effect.setProperty("Horizontal Blur Target", s.second);
    effect.animateProperty("Blur Count", KeyModeLinear, {{0, 0}, {2, 9}});
}

void addGlow(Supplies& s, Effect& room)
{
    auto& effect = s.builder.addQuad<TextureGlowEffect>(room, "Glow", s.still, BlendMode::Solid, screen);
    effect.setProperty("Glow Target", s.small);
    effect.setProperty("Vertical Blur Target", s.first);
    effect.setProperty("Horizontal Blur Target", s.second);
    effect.setProperty("Blur Count", 5);
    effect.setProperty("Threshold", 0.75f);
    effect.setProperty("Bloom Saturation", 1.2f);
    effect.animateProperty("Bloom Intensity", KeyModeBezier, {{0, 0}, {1, 1.6f}, {2, 0}});
}

/// The focus wanders from the front to the back.
void animateFocus(Supplies& s, Effect& effect)
{
    effect.setProperty("Depth Source", s.depth);
    effect.setProperty("Focal Width", 9);
    effect.animateProperty("Focal Distance", KeyModeBezier, {{0, 5}, {1.8f, 20}});
}

void addDiscBlur(Supplies& s, Effect& room)
{
    addDepth(s, room);
    addScene(s, room);
    auto& effect = s.builder.addQuad<TextureDOFEffect>(room, "Disc", s.scene, BlendMode::Solid, screen);
    effect.setProperty("Type", "Disc Blur");
    effect.setProperty("COC", 14);
    animateFocus(s, effect);
}

void addDownsampleBlur(Supplies& s, Effect& room)
{
    addDepth(s, room);
    addScene(s, room);
    RenderTargetEffect& target = s.builder.addTargetEffect(room, "Blurred", s.small);
    auto& blur = s.builder.addQuad<TextureBlurEffect>(target, "Blurred", s.scene, BlendMode::Solid, screen);
    blur.setProperty("Vertical Blur Target", s.first);
    blur.setProperty("Horizontal Blur Target", s.second);
    blur.setProperty("Blur Count", 4);
    auto& effect =
        s.builder.addQuad<TextureDOFEffect>(room, "Downsampled", s.scene, BlendMode::Solid, screen);
    effect.setProperty("Blur Source", s.small);
    effect.setProperty("COC", 1);
    animateFocus(s, effect);
}

void addAmbientOcclusion(Supplies& s, Effect& room)
{
    addDepth(s, room);
    // The effect scatters its samples by a picture of 256 by 256: in targets not much larger its grain can be blurred away.
    auto& effect = s.builder.addQuad<TextureSSAOEffect>(room, "Occlusion", s.depth, BlendMode::Solid, screen);
    effect.setProperty("SSAO HBlur Target", s.coarse);
    effect.setProperty("SSAO VBlur Target", s.coarse2);
    effect.setProperty("Occlusion Radius", 1.2f);
    effect.setProperty("Occlusion Fade End", 3);
    effect.setProperty("Blur Count", 7);
    Effect& alone = s.builder.addQuad(room, "Alone", s.coarse2, BlendMode::Solid, leftHalf);
    alone.setProperty("UV-Rect", leftUv);
    Effect& picture = s.builder.addQuad(room, "Picture", s.still, BlendMode::Solid, rightHalf);
    Effect& applied = s.builder.addQuad(room, "Applied", s.coarse2, BlendMode::Multiply, rightHalf);
    for (Effect* quad : {&picture, &applied})
        quad->setProperty("UV-Rect", rightUv);
}

void addLensflare(Supplies& s, Effect& room)
{
    RenderTargetEffect& target = s.builder.addTargetEffect(room, "Lights", s.small);
    auto& lights =
        s.builder.addQuad<TextureColorCorrectionEffect>(target, "Lights", s.still, BlendMode::Solid, screen);
    // In grey the lamps and the sun stand out from the sky, which is as red as they are.
    lights.setProperty("Saturation", 0);
    lights.setProperty("Contrast", 6);
    lights.setProperty("Brightness", 0.66f);
    s.builder.addQuad(room, "Still life", s.still, BlendMode::Solid, screen);
    // The program gives the light a tint and no strength of its own: more of it comes from drawing it again.
    for (const char* name : {"Flare", "More flare", "Still more"})
        s.builder.addQuad<TextureLensflareEffect>(room, name, s.small, BlendMode::Additive, screen);
}

void addClearScreen(Supplies& s, Effect& room)
{
    auto& clear = s.builder.addEffect<ClearScreenEffect>(room, "Clear");
    clear.animateProperty(
        "Color", KeyModeLinear,
        {{0, {0.1f, 0.28f, 0.42f, 1}}, {1, {0.5f, 0.2f, 0.32f, 1}}, {2, {0.62f, 0.44f, 0.16f, 1}}});
    s.builder.addQuad(room, "Still life", s.still, BlendMode::Solid, {240, 115, 480, 270});
}

/// A picture in a target is a texture like any other: here it hangs on three walls.
void addRenderTarget(Supplies& s, Effect& room)
{
    addScene(s, room);
    s.builder.addQuad(room, "Wall", s.scene, BlendMode::Solid, screen);
    Effect& shade = s.builder.addQuad(room, "Shade", s.white, BlendMode::Multiply, screen);
    shade.setProperty("Color", Vec4(0.5f, 0.42f, 0.5f, 1));
    for (int i = 0; i < 3; ++i) {
        const Rect place{40 + 310 * static_cast<float>(i), 150, 260, 146};
        Effect& frame = s.builder.addQuad(room, "Frame", s.white, BlendMode::Solid,
                                          {place.x - 7, place.y - 7, place.width + 14, place.height + 14});
        Effect& picture = s.builder.addQuad(room, "Picture", s.scene, BlendMode::Solid, place);
        const float angle = 24 * static_cast<float>(i - 1);
        picture.animateProperty("Rotation", KeyModeBezier,
                                {{0, {0, angle, -6}}, {1, {0, -angle, 6}}, {2, {0, angle, -6}}});
        s.builder.addLink(picture, "Rotation", frame, "Rotation");
    }
}

void addRayMarching(Supplies& s, Effect& room)
{
    auto& effect = s.builder.addQuad<RayMarchingEffect>(room, "Walls", s.waves, BlendMode::Solid, screen);
    auto& shader = s.builder.addNode<ShaderNode>("Tunnel");
    shader.setText(tunnelShader);
    s.builder.addLink(shader, "Shader", effect, "Shader");
}

struct Room
{
    const char* name;
    void (*fill)(Supplies& supplies, Effect& room);
};

constexpr Room rooms[] = {
    {"Texture", addTexture},
    {"Texture Blend", addBlend},
    {"Color Correction", addColorCorrection},
    {"Dither", addDither},
    {"Displacement", addDisplacement},
    {"RGB Displacement", addRgbDisplacement},
    {"Blur", addBlur},
    {"Glow", addGlow},
    {"Depth of Field: Disc", addDiscBlur},
    {"Depth of Field: Downsampled", addDownsampleBlur},
    {"Ambient Occlusion", addAmbientOcclusion},
    {"Lens Flare", addLensflare},
    {"Clear Screen", addClearScreen},
    {"Render Target", addRenderTarget},
    {"Ray Marching", addRayMarching},
};

std::string getLabelPath(size_t room)
{
    return formatString("label-%02zu.tga", room + 1);
}

/// Thin capitals on a soft shadow, premultiplied.
bool paintLabel(const std::string& path, std::string name, int width, int height)
{
    for (char& letter : name)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    const Lettering letters(name, 0.45f, 0.42f);
    const float aspect = static_cast<float>(width) / static_cast<float>(height);
    return writePicture(path, width, height, [&](float u, float v) {
        const float distance = letters.getDistance(u * aspect - 0.3f, v - 0.28f);
        const float core = 1 - smooth(0.022f, 0.042f, distance);
        const float shadow = 0.72f * (1 - smooth(0.04f, 0.28f, distance));
        return Color{core, core, core, std::max(core, shadow)};
    });
}

Color paintVeil(float u, float v)
{
    const float light = 0.2f + 0.8f * smooth(1.0f, 0.0f, v);
    const auto wave = [&](float phase) {
        return light * (0.62f + 0.38f * std::cos(6.2831853f * (u - phase)));
    };
    return {wave(0), wave(1.0f / 3), wave(2.0f / 3), 1};
}

/// Periodic in both directions; each channel on its own.
Color paintWaves(float u, float v)
{
    const auto wave = [&](float across, float down, float phase) {
        return 0.5f + 0.5f * std::sin(6.2831853f * (across * u + down * v + phase));
    };
    return {wave(1, 2, 0.1f * std::sin(6.2831853f * 3 * v)), wave(2, -1, 0.1f * std::sin(6.2831853f * 2 * u)),
            wave(-1, 3, 0.3f), 1};
}

} // namespace

const int galleryFrames = galleryRoomFrames * static_cast<int>(std::size(rooms));

bool paintGallery(const std::string& folder)
{
    for (size_t i = 0; i < std::size(rooms); ++i) {
        if (!paintLabel(folder + getLabelPath(i), rooms[i].name, 1536, 96))
            return false;
    }
    for (const auto& [type, name] : getBlendLabels()) {
        if (!paintLabel(folder + getBlendLabelPath(type), name, 576, 96))
            return false;
    }
    const auto white = [](float, float) { return Color{1, 1, 1, 1}; };
    return paintStill(folder) && writePicture(folder + "veil.tga", 256, 256, paintVeil) &&
           writePicture(folder + "white.tga", 4, 4, white) &&
           writePicture(folder + "waves.tga", 256, 256, paintWaves);
}

void addGallery(CompositionBuilder& builder, Effect& root)
{
    Supplies supplies(builder);
    for (size_t i = 0; i < std::size(rooms); ++i) {
        const int start = static_cast<int>(i) * galleryRoomFrames;
        Layer& room = builder.addLayer(root, rooms[i].name, start, start + galleryRoomFrames);
        rooms[i].fill(supplies, room);
        builder.addQuad(room, "Label", builder.addTexture(getLabelPath(i)), BlendMode::Premultiplied,
                        {12, 476, 880, 55});
    }
}
