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
    explicit Supplies(Stage& on)
        : stage(on), still(on.addPicture("still.tga")), stillDepth(on.addPicture("still-depth.dds")),
          veil(on.addPicture("veil.tga")), white(on.addPicture("white.tga")),
          waves(on.addPicture("waves.tga")), scene(on.addRenderTarget("Scene", 1920, 1080)),
          depth(on.addRenderTarget("Depth", 640, 360, true)), first(on.addRenderTarget("First", 960, 540)),
          second(on.addRenderTarget("Second", 960, 540)), small(on.addRenderTarget("Small", 320, 180)),
          coarse(on.addRenderTarget("Coarse", 640, 360)), coarse2(on.addRenderTarget("Coarse, too", 640, 360))
    {
    }

    Stage& stage;
    std::string still;
    std::string stillDepth;
    std::string veil;
    std::string white;
    std::string waves;
    std::string scene;
    std::string depth;
    std::string first;
    std::string second;
    std::string small;
    std::string coarse;
    std::string coarse2;
};

/// Normals and depth of the still life, in a target for the effects that reckon with them.
void addDepth(Supplies& s, Effect& room)
{
    RenderTargetEffect& target = s.stage.addTarget(room, "Normals and depth", s.depth);
    s.stage.addQuad(target, "Normals and depth", s.stillDepth, BlendMode::Solid, screen);
}

/// The still life in the target "Scene".
void addScene(Supplies& s, Effect& room)
{
    RenderTargetEffect& target = s.stage.addTarget(room, "Scene", s.scene);
    s.stage.addQuad(target, "Still life", s.still, BlendMode::Solid, screen);
}

void addTexture(Supplies& s, Effect& room)
{
    Effect& quad = s.stage.addQuad(room, "Still life", s.still, BlendMode::Solid, screen);
    s.stage.animate(quad, "UV-Rect", KeyModeBezier,
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
            s.stage.addQuad<TextureBlendEffect>(room, name.c_str(), s.still, BlendMode::Solid, tile);
        s.stage.set(blend, "UV-Rect", Vec4(0.3f, 0, 0.7f, 1));
        s.stage.set(blend, "Texture-2", s.veil);
        s.stage.set(blend, "Blend Type", formatString("%d", type));
        s.stage.addQuad(room, "Name", s.stage.addPicture(getBlendLabelPath(type)), BlendMode::Premultiplied,
                        {tile.x + 6, tile.y + 4, 180, 30});
    }
}

/// Four grades of one picture, side by side; the last goes through all hues.
void addColorCorrection(Supplies& s, Effect& room)
{
    const struct
    {
        const char *name, *brightness, *contrast, *saturation, *hue;
    } grades[] = {
        {"Grey", "1.1", "1.2", "0", "0"},
        {"Vivid", "1.1", "1.05", "1.4", "0"},
        {"Cold", "1", "1", "0.8", "-130"},
        {"All hues", "1", "1.1", "1.1", "0"},
    };
    constexpr float share = 1.0f / static_cast<float>(std::size(grades));
    for (size_t i = 0; i < std::size(grades); ++i) {
        const float left = share * static_cast<float>(i);
        auto& effect = s.stage.addQuad<TextureColorCorrectionEffect>(
            room, grades[i].name, s.still, BlendMode::Solid, {960 * left, 0, 960 * share, 540});
        s.stage.set(effect, "UV-Rect", Vec4(left, 0, left + share, 1));
        s.stage.set(effect, "Brightness", grades[i].brightness);
        s.stage.set(effect, "Contrast", grades[i].contrast);
        s.stage.set(effect, "Saturation", grades[i].saturation);
        s.stage.set(effect, "Hue", grades[i].hue);
        if (i + 1 == std::size(grades))
            s.stage.animate(effect, "Hue", KeyModeLinear, {{0, {0, 0, 0, 0}}, {2, {360, 0, 0, 0}}});
    }
}

void addDither(Supplies& s, Effect& room)
{
    auto& color = s.stage.addQuad<TextureDitherEffect>(room, "Color", s.still, BlendMode::Solid, leftHalf);
    s.stage.set(color, "UV-Rect", leftUv);
    auto& grey = s.stage.addQuad<TextureDitherEffect>(room, "Grey", s.still, BlendMode::Solid, rightHalf);
    s.stage.set(grey, "UV-Rect", rightUv);
    s.stage.set(grey, "Grayscale", "1");
    for (Effect* effect : {static_cast<Effect*>(&color), static_cast<Effect*>(&grey)})
        s.stage.set(*effect, "Dither Scale", "240, 135");
}

void addDisplacement(Supplies& s, Effect& room)
{
    auto& effect =
        s.stage.addQuad<TextureDisplacementEffect>(room, "Waves", s.still, BlendMode::Solid, screen);
    s.stage.set(effect, "Displacement Texture", s.waves);
    s.stage.set(effect, "Wrap", "2");
    s.stage.set(effect, "U Power", "0.06");
    s.stage.set(effect, "V Power", "0.06");
    s.stage.animate(effect, "Displacement UV-Rect", KeyModeLinear,
                    {{0, {0, 0, 1.6f, 0.9f}}, {2, {0, -0.5f, 1.6f, 0.4f}}});
}

void addRgbDisplacement(Supplies& s, Effect& room)
{
    auto& effect =
        s.stage.addQuad<TextureRgbDisplacementEffect>(room, "Prism", s.still, BlendMode::Solid, screen);
    s.stage.set(effect, "RgbDisplacement Texture", s.waves);
    s.stage.set(effect, "RgbDisplacement UV-Rect", Vec4(0, 0, 1.6f, 0.9f));
    s.stage.set(effect, "Wrap", "2");
    const char* powers[] = {"U Power R", "V Power R", "U Power G", "V Power G", "U Power B", "V Power B"};
    const float most[] = {0.022f, 0, 0, 0.022f, -0.022f, -0.014f};
    for (size_t i = 0; i < std::size(powers); ++i)
        s.stage.animate(effect, powers[i], KeyModeBezier,
                        {{0, {0, 0, 0, 0}}, {1, {most[i], 0, 0, 0}}, {2, {0, 0, 0, 0}}});
}

void addBlur(Supplies& s, Effect& room)
{
    auto& effect = s.stage.addQuad<TextureBlurEffect>(room, "Blur", s.still, BlendMode::Solid, screen);
    s.stage.set(effect, "Vertical Blur Target", s.first);
    s.stage.set(effect, "Horizontal Blur Target", s.second);
    s.stage.animate(effect, "Blur Count", KeyModeLinear, {{0, {0, 0, 0, 0}}, {2, {9, 0, 0, 0}}});
}

void addGlow(Supplies& s, Effect& room)
{
    auto& effect = s.stage.addQuad<TextureGlowEffect>(room, "Glow", s.still, BlendMode::Solid, screen);
    s.stage.set(effect, "Glow Target", s.small);
    s.stage.set(effect, "Vertical Blur Target", s.first);
    s.stage.set(effect, "Horizontal Blur Target", s.second);
    s.stage.set(effect, "Blur Count", "5");
    s.stage.set(effect, "Threshold", "0.75");
    s.stage.set(effect, "Bloom Saturation", "1.2");
    s.stage.animate(effect, "Bloom Intensity", KeyModeBezier,
                    {{0, {0, 0, 0, 0}}, {1, {1.6f, 0, 0, 0}}, {2, {0, 0, 0, 0}}});
}

/// The focus wanders from the front to the back.
void animateFocus(Supplies& s, Effect& effect)
{
    s.stage.set(effect, "Depth Source", s.depth);
    s.stage.set(effect, "Focal Width", "9");
    s.stage.animate(effect, "Focal Distance", KeyModeBezier, {{0, {5, 0, 0, 0}}, {1.8f, {20, 0, 0, 0}}});
}

void addDiscBlur(Supplies& s, Effect& room)
{
    addDepth(s, room);
    addScene(s, room);
    auto& effect = s.stage.addQuad<TextureDOFEffect>(room, "Disc", s.scene, BlendMode::Solid, screen);
    s.stage.set(effect, "Type", "1");
    s.stage.set(effect, "COC", "14");
    animateFocus(s, effect);
}

void addDownsampleBlur(Supplies& s, Effect& room)
{
    addDepth(s, room);
    addScene(s, room);
    RenderTargetEffect& target = s.stage.addTarget(room, "Blurred", s.small);
    auto& blur = s.stage.addQuad<TextureBlurEffect>(target, "Blurred", s.scene, BlendMode::Solid, screen);
    s.stage.set(blur, "Vertical Blur Target", s.first);
    s.stage.set(blur, "Horizontal Blur Target", s.second);
    s.stage.set(blur, "Blur Count", "4");
    auto& effect = s.stage.addQuad<TextureDOFEffect>(room, "Downsampled", s.scene, BlendMode::Solid, screen);
    s.stage.set(effect, "Blur Source", s.small);
    s.stage.set(effect, "COC", "1");
    animateFocus(s, effect);
}

void addAmbientOcclusion(Supplies& s, Effect& room)
{
    addDepth(s, room);
    // The effect scatters its samples by a picture of 256 by 256: in targets not much larger its grain can be blurred away.
    auto& effect = s.stage.addQuad<TextureSSAOEffect>(room, "Occlusion", s.depth, BlendMode::Solid, screen);
    s.stage.set(effect, "SSAO HBlur Target", s.coarse);
    s.stage.set(effect, "SSAO VBlur Target", s.coarse2);
    s.stage.set(effect, "Occlusion Radius", "1.2");
    s.stage.set(effect, "Occlusion Fade End", "3");
    s.stage.set(effect, "Blur Count", "7");
    Effect& alone = s.stage.addQuad(room, "Alone", s.coarse2, BlendMode::Solid, leftHalf);
    s.stage.set(alone, "UV-Rect", leftUv);
    Effect& picture = s.stage.addQuad(room, "Picture", s.still, BlendMode::Solid, rightHalf);
    Effect& applied = s.stage.addQuad(room, "Applied", s.coarse2, BlendMode::Multiply, rightHalf);
    for (Effect* quad : {&picture, &applied})
        s.stage.set(*quad, "UV-Rect", rightUv);
}

void addLensflare(Supplies& s, Effect& room)
{
    RenderTargetEffect& target = s.stage.addTarget(room, "Lights", s.small);
    auto& lights =
        s.stage.addQuad<TextureColorCorrectionEffect>(target, "Lights", s.still, BlendMode::Solid, screen);
    // In grey the lamps and the sun stand out from the sky, which is as red as they are.
    s.stage.set(lights, "Saturation", "0");
    s.stage.set(lights, "Contrast", "6");
    s.stage.set(lights, "Brightness", "0.66");
    s.stage.addQuad(room, "Still life", s.still, BlendMode::Solid, screen);
    // The program gives the light a tint and no strength of its own: more of it comes from drawing it again.
    for (const char* name : {"Flare", "More flare", "Still more"})
        s.stage.addQuad<TextureLensflareEffect>(room, name, s.small, BlendMode::Additive, screen);
}

void addClearScreen(Supplies& s, Effect& room)
{
    auto& clear = s.stage.add<ClearScreenEffect>(room, "Clear");
    s.stage.animate(
        clear, "Color", KeyModeLinear,
        {{0, {0.1f, 0.28f, 0.42f, 1}}, {1, {0.5f, 0.2f, 0.32f, 1}}, {2, {0.62f, 0.44f, 0.16f, 1}}});
    s.stage.addQuad(room, "Still life", s.still, BlendMode::Solid, {240, 115, 480, 270});
}

/// A picture in a target is a texture like any other: here it hangs on three walls.
void addRenderTarget(Supplies& s, Effect& room)
{
    addScene(s, room);
    s.stage.addQuad(room, "Wall", s.scene, BlendMode::Solid, screen);
    Effect& shade = s.stage.addQuad(room, "Shade", s.white, BlendMode::Multiply, screen);
    s.stage.set(shade, "Color", Vec4(0.5f, 0.42f, 0.5f, 1));
    for (int i = 0; i < 3; ++i) {
        const Rect place{40 + 310 * static_cast<float>(i), 150, 260, 146};
        Effect& frame = s.stage.addQuad(room, "Frame", s.white, BlendMode::Solid,
                                        {place.x - 7, place.y - 7, place.width + 14, place.height + 14});
        Effect& picture = s.stage.addQuad(room, "Picture", s.scene, BlendMode::Solid, place);
        const float angle = 24 * static_cast<float>(i - 1);
        s.stage.animate(picture, "Rotation", KeyModeBezier,
                        {{0, {0, angle, -6, 0}}, {1, {0, -angle, 6, 0}}, {2, {0, angle, -6, 0}}});
        s.stage.link(picture, "Rotation", frame, "Rotation");
    }
}

void addRayMarching(Supplies& s, Effect& room)
{
    auto& effect = s.stage.addQuad<RayMarchingEffect>(room, "Walls", s.waves, BlendMode::Solid, screen);
    auto& shader = s.stage.addNode<ShaderNode>("Tunnel");
    shader.setText(tunnelShader);
    s.stage.link(shader, "Shader", effect, "Shader");
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

void addGallery(Stage& stage, Effect& root)
{
    Supplies supplies(stage);
    for (size_t i = 0; i < std::size(rooms); ++i) {
        const int start = static_cast<int>(i) * galleryRoomFrames;
        Layer& room = stage.addLayer(root, rooms[i].name, start, start + galleryRoomFrames);
        rooms[i].fill(supplies, room);
        stage.addQuad(room, "Label", stage.addPicture(getLabelPath(i)), BlendMode::Premultiplied,
                      {12, 476, 880, 55});
    }
}
