// SPDX-License-Identifier: MIT
#include "Sunrise.h"

#include <helvantine/core/Rect.h>
#include <helvantine/core/Text.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/TextureDisplacementEffect.h>

#include <algorithm>
#include <cmath>

using namespace helvantine;

namespace
{

constexpr float horizon = 345.0f; // in the 960 by 540 units of the virtual screen

struct CloudBand
{
    const char* name;
    Rect place;
    Vec4 from; ///< part of the picture at the beginning of the film
    Vec4 to;   ///< and at its end
};

constexpr CloudBand cloudBands[] = {
    {"High", {0, 40, 960, 200}, {0.1f, 0, 0.75f, 1}, {0.16f, 0, 0.81f, 1}},
    {"Low", {0, 190, 960, 120}, {0.4f, 0, 0.95f, 0.8f}, {0.5f, 0, 1.05f, 0.8f}},
};

Effect& addCloudBand(CompositionBuilder& builder, Effect& parent, const CloudBand& band)
{
    Effect& clouds =
        builder.addQuad(parent, band.name, builder.addTexture("clouds.tga"), BlendMode::Alpha, band.place);
    clouds.animateProperty("UV-Rect", KeyModeLinear, {{0, band.from}, {10, band.to}});
    clouds.setProperty("Wrap", "Wrap");
    return clouds;
}

void addSky(CompositionBuilder& builder, Effect& parent, const RenderTargetResource* starlight)
{
    Layer& sky = builder.addLayer(parent, "Sky", 0, sunriseFrames);
    builder.addQuad(sky, "Night", builder.addTexture("night.tga"), BlendMode::Solid, {0, 0, 960, horizon});
    Effect& dawn =
        builder.addQuad(sky, "Dawn", builder.addTexture("dawn.tga"), BlendMode::Alpha, {0, 0, 960, horizon});
    dawn.animateProperty("Color", KeyModeBezier,
                         {{0.5f, {0.7f, 0.5f, 0.8f, 0}}, {4.5f, {1, 0.85f, 0.9f, 0.8f}}, {8, {1, 1, 1, 1}}});
    Effect& stars = builder.addQuad(sky, "Stars", starlight, BlendMode::Additive, {0, 0, 960, horizon});
    stars.setProperty("UV-Rect", Vec4(0, 0, 1, horizon / 540));
    stars.animateProperty("Color", KeyModeBezier, {{0.5f, {1, 1, 1, 1}}, {6, {0.8f, 0.8f, 1, 0}}});
}

/// The stars in a target of their own, where the clouds, drawn in black, hide them: in the sky they are added
/// before the clouds are drawn, which let light through.
void addStarlight(CompositionBuilder& builder, Effect& parent, const RenderTargetResource* target)
{
    RenderTargetEffect& sky = builder.addTargetEffect(parent, "Starlight", target);
    Effect& dark =
        builder.addQuad(sky, "Dark", builder.addTexture("white.tga"), BlendMode::Solid, {0, 0, 960, 540});
    dark.setProperty("Color", Vec4(0, 0, 0, 1));
    Effect& stars =
        builder.addQuad(sky, "Stars", builder.addTexture("stars.tga"), BlendMode::Additive, {0, 0, 960, 300});
    stars.animateProperty("UV-Rect", KeyModeLinear,
                          {{0, {0, 0, 0.72f, 0.45f}}, {10, {0.03f, 0, 0.75f, 0.45f}}});
    stars.setProperty("Wrap", "Wrap");
    for (const CloudBand& band : cloudBands) {
        Effect& shade = addCloudBand(builder, sky, band);
        shade.setProperty("Color", Vec4(0, 0, 0, 3));
    }
}

/// Halo and rays lie on quads of one size: the rays follow the halo by links. The disc is a picture of its own,
/// so that its edge is sharp; it rises with the halo.
void addSun(CompositionBuilder& builder, Effect& parent)
{
    Layer& sun = builder.addLayer(parent, "Sun", 45, sunriseFrames);
    constexpr float size = 980;
    constexpr float discSize = 80;
    const Rect box{120, 0, size, size};
    std::vector<TimedValue> path;
    std::vector<TimedValue> discPath;
    constexpr Vec3 stations[] = {{0, 112, -95}, {3.5f, 104, -190}, {8.5f, 92, -262}};
    for (const auto& [time, x, y] : stations) {
        path.push_back({time, {x, y, 0}});
        discPath.push_back({time, {x + (size - discSize) / 2, y + (size - discSize) / 2, 0}});
    }
    Effect& halo = builder.addQuad(sun, "Halo", builder.addTexture("halo.tga"), BlendMode::Additive, box);
    halo.animateProperty("Position", KeyModeTcb, path);
    halo.animateProperty(
        "Color", KeyModeBezier,
        {{0, {1, 0.35f, 0.2f, 0}}, {2.5f, {1, 0.5f, 0.28f, 0.75f}}, {8, {1, 0.72f, 0.42f, 0.9f}}});
    for (const auto& [name, turn] : {std::pair("Rays", 26.0f), std::pair("Rays, other way", -34.0f)}) {
        Effect& rays = builder.addQuad(sun, name, builder.addTexture("rays.tga"), BlendMode::Additive, box);
        rays.animateProperty("Rotation", KeyModeLinear, {{0, {0, 0, 20}}, {10, {0, 0, 20 + turn}}});
        builder.addLink(halo, "Position", rays, "Position");
        rays.animateProperty("Color", KeyModeBezier,
                             {{0.5f, {1, 0.6f, 0.4f, 0}}, {6, {1, 0.75f, 0.5f, 0.3f}}});
    }
    Effect& disc = builder.addQuad(sun, "Disc", builder.addTexture("disc.tga"), BlendMode::Alpha,
                                   {0, 0, discSize, discSize});
    disc.animateProperty("Position", KeyModeTcb, discPath);
    disc.animateProperty("Color", KeyModeBezier,
                         {{0, {1, 0.5f, 0.3f, 1}}, {2.5f, {1, 0.8f, 0.5f, 1}}, {6, {1, 0.98f, 0.86f, 1}}});
}

void addClouds(CompositionBuilder& builder, Effect& parent)
{
    Layer& clouds = builder.addLayer(parent, "Clouds", 0, sunriseFrames);
    Effect* first = nullptr;
    for (const CloudBand& band : cloudBands) {
        Effect& effect = addCloudBand(builder, clouds, band);
        if (first)
            builder.addLink(*first, "Color", effect, "Color");
        else
            effect.animateProperty("Color", KeyModeBezier,
                                   {{0, {0.1f, 0.1f, 0.22f, 0.5f}},
                                    {4, {0.85f, 0.42f, 0.5f, 0.55f}},
                                    {8.5f, {1.25f, 0.85f, 0.72f, 0.8f}}});
        first = first ? first : &effect;
    }
}

struct Ridge
{
    const char* name;
    const char* picture;
    Rect place;
    float width; ///< of the picture, as a share of the texture
    float drift; ///< over the whole film, likewise
    Vec4 night;
    Vec4 day;
};

void addLand(CompositionBuilder& builder, Effect& parent)
{
    const Ridge ridges[] = {
        {"Far",
         "ridge-far.tga",
         {0, 190, 960, 158},
         0.42f,
         0.015f,
         {0.1f, 0.12f, 0.24f, 1},
         {0.9f, 0.52f, 0.62f, 1}},
        {"Middle",
         "ridge-middle.tga",
         {0, 228, 960, 120},
         0.5f,
         0.03f,
         {0.06f, 0.075f, 0.16f, 1},
         {0.52f, 0.3f, 0.5f, 1}},
        {"Near",
         "ridge-near.tga",
         {0, 272, 960, 76},
         0.46f,
         0.055f,
         {0.03f, 0.04f, 0.09f, 1},
         {0.22f, 0.13f, 0.29f, 1}},
    };
    Layer& land = builder.addLayer(parent, "Land", 0, sunriseFrames);
    float left = 0.05f;
    for (const Ridge& ridge : ridges) {
        Effect& effect = builder.addQuad(land, ridge.name, builder.addTexture(ridge.picture),
                                         BlendMode::Alpha, ridge.place);
        effect.animateProperty("Color", KeyModeBezier, {{1, ridge.night}, {8, ridge.day}});
        effect.animateProperty("UV-Rect", KeyModeLinear,
                               {{0, {left, 0.01f, left + ridge.width, 1}},
                                {10, {left + ridge.drift, 0.01f, left + ridge.drift + ridge.width, 1}}});
        effect.setProperty("Wrap", "Wrap");
        left += 0.27f;
    }
}

constexpr int fireflyTail = 60; ///< copies

/// Four lights, each led by keys of another mode, and each with a tail: copies that start a frame later each
/// and grow thinner and fainter.
void addFireflies(CompositionBuilder& builder, Effect& parent)
{
    const struct
    {
        const char* name;
        uint32_t mode;
        Vec4 color;
        float x, y;
    } lights[] = {
        {"Hold", KeyModeHold, {1, 0.82f, 0.45f, 1}, 250, 285},
        {"Linear", KeyModeLinear, {1, 0.58f, 0.4f, 1}, 120, 250},
        {"Bezier", KeyModeBezier, {1, 0.7f, 0.75f, 1}, 700, 262},
        {"TCB", KeyModeTcb, {0.72f, 0.85f, 1, 1}, 430, 262},
    };
    for (const auto& light : lights) {
        Layer& layer = builder.addLayer(parent, light.name, 30, 285);
        for (int i = fireflyTail - 1; i >= 0; --i) {
            const float age = static_cast<float>(i) / fireflyTail;
            const float size = i == 0 ? 30.0f : 11 - 7 * age;
            const float strength = i == 0 ? 0.9f : 0.22f * (1 - age) * (1 - age);
            Effect& glow = builder.addQuad(layer, light.name, builder.addTexture("glow.tga"),
                                           BlendMode::Additive, {0, 0, size, size});
            glow.setStart(i);
            glow.setEnd(255 - fireflyTail + i);
            std::vector<TimedValue> path;
            for (int k = 0; k < 5; ++k)
                path.push_back({2 * static_cast<float>(k),
                                {light.x + 62 * static_cast<float>(k) - size / 2,
                                 light.y + (k % 2 ? -38.0f : 18.0f) - size / 2, 0}});
            glow.animateProperty("Position", light.mode, path);
            const Vec4 bright{light.color.x, light.color.y, light.color.z, strength};
            const Vec4 dark{light.color.x, light.color.y, light.color.z, 0};
            glow.animateProperty("Color", KeyModeBezier, {{0, dark}, {1, bright}, {5, bright}, {6.4f, dark}});
        }
    }
}

/// Added, core and all: light that fades never darkens what is behind it.
void addTitle(CompositionBuilder& builder, Effect& parent)
{
    Layer& layer = builder.addLayer(parent, "Title", 120, 285);
    Effect& title = builder.addQuad(layer, "Name", builder.addTexture("title.tga"), BlendMode::Additive,
                                    {60, 92, 840, 105});
    title.animateProperty("Color", KeyModeBezier,
                          {{0, {1, 0.97f, 0.92f, 0}},
                           {1.6f, {1, 0.97f, 0.92f, 1}},
                           {4.2f, {1, 0.97f, 0.92f, 1}},
                           {5.4f, {1, 0.97f, 0.92f, 0}}});
}

/// A picture whose points are shifted by waves that drift. A shift isn't centred: the rectangle takes half of the
/// most back.
void addRippled(CompositionBuilder& builder, Effect& parent, const char* name, const Resource* picture,
                const Rect& place, const Rect& part, float from, float to)
{
    constexpr float across = 0.035f; // in widths and heights of the picture
    const float down = 0.09f * std::abs(part.height);
    auto& quad = builder.addQuad<TextureDisplacementEffect>(parent, name, picture, BlendMode::Solid, place);
    const Vec4 whole(part.x, part.y, part.x + part.width, part.y + part.height);
    quad.setProperty(
        "UV-Rect", Vec4(whole.x - across / 2, whole.y - down / 2, whole.z - across / 2, whole.w - down / 2));
    quad.setProperty("Displacement Texture", builder.addTexture("ripples.tga"));
    quad.setProperty("U Power", across);
    quad.setProperty("V Power", down);
    quad.setProperty("Wrap", "Mirror");
    quad.animateProperty("Displacement UV-Rect", KeyModeLinear,
                         {{0, {from, 0, from + 0.85f, 1}}, {10, {to, 0, to + 0.85f, 1}}});
}

/// The picture above the horizon, mirrored in waves that run against each other.
void addWater(CompositionBuilder& builder, Effect& parent, const RenderTargetResource* scene,
              const RenderTargetResource* reflection)
{
    constexpr float squeeze = 1.35f; // of the mirrored picture
    const Rect surface{0, horizon, 960, 540 - horizon};
    RenderTargetEffect& first = builder.addTargetEffect(parent, "Reflection", reflection);
    addRippled(builder, first, "Waves", scene, {0, 0, 960, 540},
               {0, horizon / 540, 1, -squeeze * surface.height / 540}, 0, 0.12f);
    Layer& water = builder.addLayer(parent, "Water", 0, sunriseFrames);
    addRippled(builder, water, "Waves, other way", reflection, surface, {0, 0, 1, 1}, 0.15f, 0.05f);
    builder.addQuad(water, "Depth", builder.addTexture("water.tga"), BlendMode::Multiply, surface);
    Effect& mist = builder.addQuad(water, "Mist", builder.addTexture("glow.tga"), BlendMode::Additive,
                                   {-120, horizon - 26, 1200, 50});
    mist.animateProperty("Color", KeyModeBezier,
                         {{0, {0.2f, 0.25f, 0.45f, 0.25f}}, {8, {1, 0.72f, 0.55f, 0.5f}}});
}

/// Two drifting patterns, multiplied in a target of their own, flash where both are bright.
void addGlints(CompositionBuilder& builder, Effect& parent, const RenderTargetResource* target)
{
    RenderTargetEffect& glints = builder.addTargetEffect(parent, "Glints", target);
    Effect& first = builder.addQuad(glints, "Waves", builder.addTexture("glints.tga"), BlendMode::Solid,
                                    {0, 0, 960, 540});
    first.animateProperty("UV-Rect", KeyModeLinear, {{0, {0, 0, 1, 1}}, {10, {0.35f, 0.22f, 1.35f, 1.22f}}});
    Effect& second = builder.addQuad(glints, "Cross waves", builder.addTexture("glints.tga"),
                                     BlendMode::Multiply, {0, 0, 960, 540});
    second.animateProperty("UV-Rect", KeyModeLinear,
                           {{0, {0.3f, 0.4f, 1.1f, 1.2f}}, {10, {-0.1f, 0.75f, 0.7f, 1.55f}}});
    for (Effect* effect : {&first, &second})
        effect->setProperty("Wrap", "Wrap");
    builder.addQuad(glints, "Path of light", builder.addTexture("column.tga"), BlendMode::Multiply,
                    {0, 0, 960, 540});
    Effect& shown = builder.addQuad(parent, "Glints on the water", target, BlendMode::Additive,
                                    {102, horizon, 960, 540 - horizon});
    shown.animateProperty(
        "Color", KeyModeBezier,
        {{1.5f, {0.2f, 0.25f, 0.4f, 0.6f}}, {5, {1.2f, 0.62f, 0.4f, 1}}, {9, {1.7f, 1.2f, 0.8f, 1}}});
}

/// What the camera adds: dark corners, grain that jumps from frame to frame, and the fades.
void addFilm(CompositionBuilder& builder, Effect& parent)
{
    builder.addQuad(parent, "Vignette", builder.addTexture("vignette.tga"), BlendMode::Multiply,
                    {0, 0, 960, 540});
    Effect& grain = builder.addQuad(parent, "Grain", builder.addTexture("grain.tga"), BlendMode::Additive,
                                    {0, 0, 960, 540});
    grain.setProperty("Color", Vec4(1, 1, 1, 0.035f));
    grain.setProperty("Wrap", "Wrap");
    std::vector<TimedValue> jumps;
    for (int i = 0; i < 16; ++i)
        jumps.push_back(
            {static_cast<float>(i) / 15, {0.37f * i, 0.61f * i, 0.37f * i + 5, 0.61f * i + 2.8125f}});
    grain.animateProperty("UV-Rect", KeyModeHold, jumps, KeyframeOOR::Cycle);
    Effect& fade = builder.addQuad(parent, "Fade", builder.addTexture("white.tga"), BlendMode::Multiply,
                                   {0, 0, 960, 540});
    fade.animateProperty(
        "Color", KeyModeBezier,
        {{0, {0.7f, 0.7f, 0.75f, 1}}, {1.2f, {1, 1, 1, 1}}, {8.8f, {1, 1, 1, 1}}, {9.97f, {0, 0, 0, 1}}});
}

} // namespace

void addSunrise(CompositionBuilder& builder, Effect& root)
{
    const RenderTargetResource* scene = builder.addRenderTarget("Scene", 1920, 1080);
    const RenderTargetResource* starlight = builder.addRenderTarget("Starlight", 1920, 1080);
    const RenderTargetResource* reflection = builder.addRenderTarget("Reflection", 1920, 400);
    const RenderTargetResource* glints = builder.addRenderTarget("Glints", 960, 540);

    addStarlight(builder, root, starlight);
    RenderTargetEffect& landscape = builder.addTargetEffect(root, "Landscape", scene);
    builder.addEffect<ClearScreenEffect>(landscape, "Clear"); // the sky ends at the horizon
    addSky(builder, landscape, starlight);
    addSun(builder, landscape);
    addClouds(builder, landscape);
    addLand(builder, landscape);
    addTitle(builder, landscape);
    addFireflies(builder, landscape);

    builder.addQuad(root, "Above the water", scene, BlendMode::Solid, {0, 0, 960, 540});
    addWater(builder, root, scene, reflection);
    addGlints(builder, root, glints);
    addFilm(builder, root);
}
