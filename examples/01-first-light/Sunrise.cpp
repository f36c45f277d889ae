// SPDX-License-Identifier: MIT
#include "Sunrise.h"

#include <helvantine/core/Rect.h>

#include <algorithm>
#include <cmath>

using namespace helvantine;

namespace
{

constexpr float horizon = 345.0f; // in the 960 by 540 units of the virtual screen

void addSky(Stage& stage, Effect& parent)
{
    Layer& sky = stage.addLayer(parent, "Sky", 0, sunriseFrames);
    stage.addQuad(sky, "Night", stage.addPicture("night.tga"), BlendMode::Solid, {0, 0, 960, horizon});
    Effect& dawn =
        stage.addQuad(sky, "Dawn", stage.addPicture("dawn.tga"), BlendMode::Alpha, {0, 0, 960, horizon});
    stage.animate(dawn, "Color", KeyModeBezier,
                  {{0.5f, {0.7f, 0.5f, 0.8f, 0}}, {4.5f, {1, 0.85f, 0.9f, 0.8f}}, {8, {1, 1, 1, 1}}});
    Effect& stars =
        stage.addQuad(sky, "Stars", stage.addPicture("stars.tga"), BlendMode::Additive, {0, 0, 960, 300});
    stage.animate(stars, "Color", KeyModeBezier, {{0.5f, {1, 1, 1, 1}}, {6, {0.8f, 0.8f, 1, 0}}});
    stage.animate(stars, "UV-Rect", KeyModeLinear,
                  {{0, {0, 0, 0.72f, 0.45f}}, {10, {0.03f, 0, 0.75f, 0.45f}}});
    stage.set(stars, "Wrap", "1");
}

/// Halo, rays and disc lie on quads of one size: all follow the disc by links.
void addSun(Stage& stage, Effect& parent)
{
    Layer& sun = stage.addLayer(parent, "Sun", 45, sunriseFrames);
    const Rect box{120, 0, 980, 980};
    Effect& disc = stage.addQuad(sun, "Disc", stage.addPicture("sun.tga"), BlendMode::Additive, box);
    stage.animate(disc, "Position", KeyModeTcb,
                  {{0, {112, -95, 0, 0}}, {3.5f, {104, -190, 0, 0}}, {8.5f, {92, -262, 0, 0}}});
    stage.animate(disc, "Color", KeyModeBezier,
                  {{0, {1, 0.35f, 0.2f, 0}}, {2.5f, {1, 0.5f, 0.28f, 0.75f}}, {8, {1, 0.8f, 0.55f, 0.95f}}});
    for (const auto& [name, turn] : {std::pair("Rays", 26.0f), std::pair("Rays, other way", -34.0f)}) {
        Effect& rays = stage.addQuad(sun, name, stage.addPicture("rays.tga"), BlendMode::Additive, box);
        stage.animate(rays, "Rotation", KeyModeLinear, {{0, {0, 0, 20, 0}}, {10, {0, 0, 20 + turn, 0}}});
        stage.link(disc, "Position", rays, "Position");
        stage.animate(rays, "Color", KeyModeBezier,
                      {{0.5f, {1, 0.6f, 0.4f, 0}}, {6, {1, 0.75f, 0.5f, 0.3f}}});
    }
}

void addClouds(Stage& stage, Effect& parent)
{
    Layer& clouds = stage.addLayer(parent, "Clouds", 0, sunriseFrames);
    Effect& high =
        stage.addQuad(clouds, "High", stage.addPicture("clouds.tga"), BlendMode::Alpha, {0, 40, 960, 200});
    stage.animate(high, "Color", KeyModeBezier,
                  {{0, {0.1f, 0.1f, 0.22f, 0.5f}},
                   {4, {0.85f, 0.42f, 0.5f, 0.55f}},
                   {8.5f, {1.25f, 0.85f, 0.72f, 0.8f}}});
    stage.animate(high, "UV-Rect", KeyModeLinear, {{0, {0.1f, 0, 0.75f, 1}}, {10, {0.16f, 0, 0.81f, 1}}});
    Effect& low =
        stage.addQuad(clouds, "Low", stage.addPicture("clouds.tga"), BlendMode::Alpha, {0, 190, 960, 120});
    stage.animate(low, "UV-Rect", KeyModeLinear, {{0, {0.4f, 0, 0.95f, 0.8f}}, {10, {0.5f, 0, 1.05f, 0.8f}}});
    stage.link(high, "Color", low, "Color");
    for (Effect* effect : {&high, &low})
        stage.set(*effect, "Wrap", "1");
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

/// Four lights, each led by keys of another mode, and each with a tail: copies that start a little later.
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
    constexpr int tail = 14;
    for (const auto& light : lights) {
        Layer& layer = stage.addLayer(parent, light.name, 30, 285);
        for (int i = tail - 1; i >= 0; --i) {
            const float fade = std::pow(1 - static_cast<float>(i) / tail, 2.0f);
            const float size = 9 + 19 * fade;
            Effect& glow = stage.addQuad(layer, light.name, stage.addPicture("glow.tga"), BlendMode::Additive,
                                         {0, 0, size, size});
            glow.setStart(2 * i);
            glow.setEnd(255 + i);
            std::vector<Stage::KeyValue> path;
            for (int k = 0; k < 9; ++k)
                path.push_back({static_cast<float>(k),
                                {light.x + 26 * static_cast<float>(k) - size / 2,
                                 light.y + (k % 2 ? -34.0f : 22.0f) - size / 2, 0, 0}});
            stage.animate(glow, "Position", light.mode, path);
            const Vec4 bright{light.color.x, light.color.y, light.color.z, 0.7f * fade};
            const Vec4 dark{light.color.x, light.color.y, light.color.z, 0};
            stage.animate(glow, "Color", KeyModeBezier, {{0, dark}, {1, bright}, {7, bright}, {8.3f, dark}});
        }
    }
}

void addTitle(Stage& stage, Effect& parent)
{
    Layer& layer = stage.addLayer(parent, "Title", 120, 285);
    Effect& title = stage.addQuad(layer, "Name", stage.addPicture("title.tga"), BlendMode::Premultiplied,
                                  {60, 92, 840, 105});
    stage.animate(title, "Color", KeyModeBezier,
                  {{0, {0, 0, 0, 0}},
                   {1.6f, {1, 0.97f, 0.92f, 1}},
                   {4.2f, {1, 0.97f, 0.92f, 1}},
                   {5.4f, {0, 0, 0, 0}}});
}

/// The picture above the horizon, mirrored: each strip sways about its place, the nearer the wider.
void addWater(Stage& stage, Effect& parent, const std::string& scene)
{
    Layer& water = stage.addLayer(parent, "Water", 0, sunriseFrames);
    const float depth = 540 - horizon;
    float top = 0;
    for (int i = 0; top < depth; ++i) {
        const float near = top / depth;
        const float height = std::min(1.1f + 1.9f * near, depth - top + 1);
        Effect& strip =
            stage.addQuad(water, "Strip", scene, BlendMode::Solid, {0, horizon + top, 960, height});
        const float shade = 0.95f - 0.5f * near;
        stage.set(strip, "Color", Vec4(shade, 0.86f * shade, 0.9f * shade, 1));
        const float sway = 0.0012f + 0.011f * near;
        const float lift = 0.002f + 0.016f * near;
        const float from = (horizon - 1.35f * top) / 540;
        const float to = (horizon - 1.35f * (top + height)) / 540;
        const float turn = 1.3f + 1.1f * near;
        const float phase = turn * std::fmod(26.0f / (0.25f + near) * 0.19f, 1.0f);
        const Vec4 right{sway, from + lift, 1 + sway, to + lift};
        const Vec4 left{-sway, from - lift, 1 - sway, to - lift};
        stage.animate(strip, "UV-Rect", KeyModeBezier,
                      {{-phase, right}, {turn / 2 - phase, left}, {turn - phase, right}}, KeyframeOOR::Cycle);
        stage.set(strip, "Wrap", "2");
        top += height;
    }
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
    stage.animate(fade, "Color", KeyModeBezier,
                  {{0, {0, 0, 0, 1}}, {1.2f, {1, 1, 1, 1}}, {8.8f, {1, 1, 1, 1}}, {9.97f, {0, 0, 0, 1}}});
}

} // namespace

void addSunrise(Stage& stage, Effect& root)
{
    const std::string scene = stage.addRenderTarget("Scene", 1280, 720);
    const std::string glints = stage.addRenderTarget("Glints", 640, 360);

    RenderTargetEffect& landscape = stage.addTarget(root, "Landscape", scene);
    addSky(stage, landscape);
    addSun(stage, landscape);
    addClouds(stage, landscape);
    addLand(stage, landscape);
    addTitle(stage, landscape);
    addFireflies(stage, landscape);

    stage.addQuad(root, "Above the water", scene, BlendMode::Solid, {0, 0, 960, 540});
    addWater(stage, root, scene);
    addGlints(stage, root, glints);
    addFilm(stage, root);
}
