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

Effect& addCloudBand(Stage& stage, Effect& parent, const CloudBand& band)
{
    Effect& clouds =
        stage.addQuad(parent, band.name, stage.addPicture("clouds.tga"), BlendMode::Alpha, band.place);
    stage.animate(clouds, "UV-Rect", KeyModeLinear, {{0, band.from}, {10, band.to}});
    stage.set(clouds, "Wrap", "1");
    return clouds;
}

void addSky(Stage& stage, Effect& parent, const std::string& starlight)
{
    Layer& sky = stage.addLayer(parent, "Sky", 0, sunriseFrames);
    stage.addQuad(sky, "Night", stage.addPicture("night.tga"), BlendMode::Solid, {0, 0, 960, horizon});
    Effect& dawn =
        stage.addQuad(sky, "Dawn", stage.addPicture("dawn.tga"), BlendMode::Alpha, {0, 0, 960, horizon});
    stage.animate(dawn, "Color", KeyModeBezier,
                  {{0.5f, {0.7f, 0.5f, 0.8f, 0}}, {4.5f, {1, 0.85f, 0.9f, 0.8f}}, {8, {1, 1, 1, 1}}});
    Effect& stars = stage.addQuad(sky, "Stars", starlight, BlendMode::Additive, {0, 0, 960, horizon});
    stage.set(stars, "UV-Rect", Vec4(0, 0, 1, horizon / 540));
    stage.animate(stars, "Color", KeyModeBezier, {{0.5f, {1, 1, 1, 1}}, {6, {0.8f, 0.8f, 1, 0}}});
}

/// The stars in a target of their own, where the clouds, drawn in black, hide them: in the sky they are added
/// before the clouds are drawn, which let light through.
void addStarlight(Stage& stage, Effect& parent, const std::string& target)
{
    RenderTargetEffect& sky = stage.addTarget(parent, "Starlight", target);
    Effect& dark =
        stage.addQuad(sky, "Dark", stage.addPicture("white.tga"), BlendMode::Solid, {0, 0, 960, 540});
    stage.set(dark, "Color", Vec4(0, 0, 0, 1));
    Effect& stars =
        stage.addQuad(sky, "Stars", stage.addPicture("stars.tga"), BlendMode::Additive, {0, 0, 960, 300});
    stage.animate(stars, "UV-Rect", KeyModeLinear,
                  {{0, {0, 0, 0.72f, 0.45f}}, {10, {0.03f, 0, 0.75f, 0.45f}}});
    stage.set(stars, "Wrap", "1");
    for (const CloudBand& band : cloudBands) {
        Effect& shade = addCloudBand(stage, sky, band);
        stage.set(shade, "Color", Vec4(0, 0, 0, 3));
    }
}

/// Halo and rays lie on quads of one size: the rays follow the halo by links. The disc is a picture of its own,
/// so that its edge is sharp; it rises with the halo.
void addSun(Stage& stage, Effect& parent)
{
    Layer& sun = stage.addLayer(parent, "Sun", 45, sunriseFrames);
    constexpr float size = 980;
    constexpr float discSize = 80;
    const Rect box{120, 0, size, size};
    const Stage::KeyValue path[] = {
        {0, {112, -95, 0, 0}}, {3.5f, {104, -190, 0, 0}}, {8.5f, {92, -262, 0, 0}}};
    std::vector<Stage::KeyValue> discPath(std::begin(path), std::end(path));
    for (Stage::KeyValue& key : discPath) {
        key.value.x += (size - discSize) / 2;
        key.value.y += (size - discSize) / 2;
    }
    Effect& halo = stage.addQuad(sun, "Halo", stage.addPicture("halo.tga"), BlendMode::Additive, box);
    stage.animate(halo, "Position", KeyModeTcb, {std::begin(path), std::end(path)});
    stage.animate(halo, "Color", KeyModeBezier,
                  {{0, {1, 0.35f, 0.2f, 0}}, {2.5f, {1, 0.5f, 0.28f, 0.75f}}, {8, {1, 0.72f, 0.42f, 0.9f}}});
    for (const auto& [name, turn] : {std::pair("Rays", 26.0f), std::pair("Rays, other way", -34.0f)}) {
        Effect& rays = stage.addQuad(sun, name, stage.addPicture("rays.tga"), BlendMode::Additive, box);
        stage.animate(rays, "Rotation", KeyModeLinear, {{0, {0, 0, 20, 0}}, {10, {0, 0, 20 + turn, 0}}});
        stage.link(halo, "Position", rays, "Position");
        stage.animate(rays, "Color", KeyModeBezier,
                      {{0.5f, {1, 0.6f, 0.4f, 0}}, {6, {1, 0.75f, 0.5f, 0.3f}}});
    }
    Effect& disc = stage.addQuad(sun, "Disc", stage.addPicture("disc.tga"), BlendMode::Alpha,
                                 {0, 0, discSize, discSize});
    stage.animate(disc, "Position", KeyModeTcb, discPath);
    stage.animate(disc, "Color", KeyModeBezier,
                  {{0, {1, 0.5f, 0.3f, 1}}, {2.5f, {1, 0.8f, 0.5f, 1}}, {6, {1, 0.98f, 0.86f, 1}}});
}

void addClouds(Stage& stage, Effect& parent)
{
    Layer& clouds = stage.addLayer(parent, "Clouds", 0, sunriseFrames);
    Effect* first = nullptr;
    for (const CloudBand& band : cloudBands) {
        Effect& effect = addCloudBand(stage, clouds, band);
        if (first)
            stage.link(*first, "Color", effect, "Color");
        else
            stage.animate(effect, "Color", KeyModeBezier,
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

void addLand(Stage& stage, Effect& parent)
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
    Layer& land = stage.addLayer(parent, "Land", 0, sunriseFrames);
    float left = 0.05f;
    for (const Ridge& ridge : ridges) {
        Effect& effect =
            stage.addQuad(land, ridge.name, stage.addPicture(ridge.picture), BlendMode::Alpha, ridge.place);
        stage.animate(effect, "Color", KeyModeBezier, {{1, ridge.night}, {8, ridge.day}});
        stage.animate(effect, "UV-Rect", KeyModeLinear,
                      {{0, {left, 0.01f, left + ridge.width, 1}},
                       {10, {left + ridge.drift, 0.01f, left + ridge.drift + ridge.width, 1}}});
        stage.set(effect, "Wrap", "1");
        left += 0.27f;
    }
}

constexpr int fireflyTail = 60; ///< copies

/// Four lights, each led by keys of another mode, and each with a tail: copies that start a frame later each
/// and grow thinner and fainter.
void addFireflies(Stage& stage, Effect& parent)
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
        Layer& layer = stage.addLayer(parent, light.name, 30, 285);
        for (int i = fireflyTail - 1; i >= 0; --i) {
            const float age = static_cast<float>(i) / fireflyTail;
            const float size = i == 0 ? 30.0f : 11 - 7 * age;
            const float strength = i == 0 ? 0.9f : 0.22f * (1 - age) * (1 - age);
            Effect& glow = stage.addQuad(layer, light.name, stage.addPicture("glow.tga"), BlendMode::Additive,
                                         {0, 0, size, size});
            glow.setStart(i);
            glow.setEnd(255 - fireflyTail + i);
            std::vector<Stage::KeyValue> path;
            for (int k = 0; k < 5; ++k)
                path.push_back({2 * static_cast<float>(k),
                                {light.x + 62 * static_cast<float>(k) - size / 2,
                                 light.y + (k % 2 ? -38.0f : 18.0f) - size / 2, 0, 0}});
            stage.animate(glow, "Position", light.mode, path);
            const Vec4 bright{light.color.x, light.color.y, light.color.z, strength};
            const Vec4 dark{light.color.x, light.color.y, light.color.z, 0};
            stage.animate(glow, "Color", KeyModeBezier, {{0, dark}, {1, bright}, {5, bright}, {6.4f, dark}});
        }
    }
}

/// Added, core and all: light that fades never darkens what is behind it.
void addTitle(Stage& stage, Effect& parent)
{
    Layer& layer = stage.addLayer(parent, "Title", 120, 285);
    Effect& title =
        stage.addQuad(layer, "Name", stage.addPicture("title.tga"), BlendMode::Additive, {60, 92, 840, 105});
    stage.animate(title, "Color", KeyModeBezier,
                  {{0, {1, 0.97f, 0.92f, 0}},
                   {1.6f, {1, 0.97f, 0.92f, 1}},
                   {4.2f, {1, 0.97f, 0.92f, 1}},
                   {5.4f, {1, 0.97f, 0.92f, 0}}});
}

/// A picture whose points are shifted by waves that drift. A shift isn't centred: the rectangle takes half of the
/// most back.
void addRippled(Stage& stage, Effect& parent, const char* name, const std::string& picture, const Rect& place,
                const Rect& part, float from, float to)
{
    constexpr float across = 0.035f; // in widths and heights of the picture
    const float down = 0.09f * std::abs(part.height);
    auto& quad = stage.addQuad<TextureDisplacementEffect>(parent, name, picture, BlendMode::Solid, place);
    const Vec4 whole(part.x, part.y, part.x + part.width, part.y + part.height);
    stage.set(quad, "UV-Rect",
              Vec4(whole.x - across / 2, whole.y - down / 2, whole.z - across / 2, whole.w - down / 2));
    stage.set(quad, "Displacement Texture", stage.addPicture("ripples.tga"));
    stage.set(quad, "U Power", formatString("%f", across));
    stage.set(quad, "V Power", formatString("%f", down));
    stage.set(quad, "Wrap", "2");
    stage.animate(quad, "Displacement UV-Rect", KeyModeLinear,
                  {{0, {from, 0, from + 0.85f, 1}}, {10, {to, 0, to + 0.85f, 1}}});
}

/// The picture above the horizon, mirrored in waves that run against each other.
void addWater(Stage& stage, Effect& parent, const std::string& scene, const std::string& reflection)
{
    constexpr float squeeze = 1.35f; // of the mirrored picture
    const Rect surface{0, horizon, 960, 540 - horizon};
    RenderTargetEffect& first = stage.addTarget(parent, "Reflection", reflection);
    addRippled(stage, first, "Waves", scene, {0, 0, 960, 540},
               {0, horizon / 540, 1, -squeeze * surface.height / 540}, 0, 0.12f);
    Layer& water = stage.addLayer(parent, "Water", 0, sunriseFrames);
    addRippled(stage, water, "Waves, other way", reflection, surface, {0, 0, 1, 1}, 0.15f, 0.05f);
    stage.addQuad(water, "Depth", stage.addPicture("water.tga"), BlendMode::Multiply, surface);
    Effect& mist = stage.addQuad(water, "Mist", stage.addPicture("glow.tga"), BlendMode::Additive,
                                 {-120, horizon - 26, 1200, 50});
    stage.animate(mist, "Color", KeyModeBezier,
                  {{0, {0.2f, 0.25f, 0.45f, 0.25f}}, {8, {1, 0.72f, 0.55f, 0.5f}}});
}

/// Two drifting patterns, multiplied in a target of their own, flash where both are bright.
void addGlints(Stage& stage, Effect& parent, const std::string& target)
{
    RenderTargetEffect& glints = stage.addTarget(parent, "Glints", target);
    Effect& first =
        stage.addQuad(glints, "Waves", stage.addPicture("glints.tga"), BlendMode::Solid, {0, 0, 960, 540});
    stage.animate(first, "UV-Rect", KeyModeLinear, {{0, {0, 0, 1, 1}}, {10, {0.35f, 0.22f, 1.35f, 1.22f}}});
    Effect& second = stage.addQuad(glints, "Cross waves", stage.addPicture("glints.tga"), BlendMode::Multiply,
                                   {0, 0, 960, 540});
    stage.animate(second, "UV-Rect", KeyModeLinear,
                  {{0, {0.3f, 0.4f, 1.1f, 1.2f}}, {10, {-0.1f, 0.75f, 0.7f, 1.55f}}});
    for (Effect* effect : {&first, &second})
        stage.set(*effect, "Wrap", "1");
    stage.addQuad(glints, "Path of light", stage.addPicture("column.tga"), BlendMode::Multiply,
                  {0, 0, 960, 540});
    Effect& shown = stage.addQuad(parent, "Glints on the water", target, BlendMode::Additive,
                                  {102, horizon, 960, 540 - horizon});
    stage.animate(
        shown, "Color", KeyModeBezier,
        {{1.5f, {0.2f, 0.25f, 0.4f, 0.6f}}, {5, {1.2f, 0.62f, 0.4f, 1}}, {9, {1.7f, 1.2f, 0.8f, 1}}});
}

/// What the camera adds: dark corners, grain that jumps from frame to frame, and the fades.
void addFilm(Stage& stage, Effect& parent)
{
    stage.addQuad(parent, "Vignette", stage.addPicture("vignette.tga"), BlendMode::Multiply,
                  {0, 0, 960, 540});
    Effect& grain =
        stage.addQuad(parent, "Grain", stage.addPicture("grain.tga"), BlendMode::Additive, {0, 0, 960, 540});
    stage.set(grain, "Color", Vec4(1, 1, 1, 0.035f));
    stage.set(grain, "Wrap", "1");
    std::vector<Stage::KeyValue> jumps;
    for (int i = 0; i < 16; ++i)
        jumps.push_back(
            {static_cast<float>(i) / 15, {0.37f * i, 0.61f * i, 0.37f * i + 5, 0.61f * i + 2.8125f}});
    stage.animate(grain, "UV-Rect", KeyModeHold, jumps, KeyframeOOR::Cycle);
    Effect& fade =
        stage.addQuad(parent, "Fade", stage.addPicture("white.tga"), BlendMode::Multiply, {0, 0, 960, 540});
    stage.animate(
        fade, "Color", KeyModeBezier,
        {{0, {0.7f, 0.7f, 0.75f, 1}}, {1.2f, {1, 1, 1, 1}}, {8.8f, {1, 1, 1, 1}}, {9.97f, {0, 0, 0, 1}}});
}

} // namespace

void addSunrise(Stage& stage, Effect& root)
{
    const std::string scene = stage.addRenderTarget("Scene", 1920, 1080);
    const std::string starlight = stage.addRenderTarget("Starlight", 1920, 1080);
    const std::string reflection = stage.addRenderTarget("Reflection", 1920, 400);
    const std::string glints = stage.addRenderTarget("Glints", 960, 540);

    addStarlight(stage, root, starlight);
    RenderTargetEffect& landscape = stage.addTarget(root, "Landscape", scene);
    stage.add<ClearScreenEffect>(landscape, "Clear"); // the sky ends at the horizon
    addSky(stage, landscape, starlight);
    addSun(stage, landscape);
    addClouds(stage, landscape);
    addLand(stage, landscape);
    addTitle(stage, landscape);
    addFireflies(stage, landscape);

    stage.addQuad(root, "Above the water", scene, BlendMode::Solid, {0, 0, 960, 540});
    addWater(stage, root, scene, reflection);
    addGlints(stage, root, glints);
    addFilm(stage, root);
}
