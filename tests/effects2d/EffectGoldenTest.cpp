// SPDX-License-Identifier: MIT
#include "DepthScene.h"
#include "EffectTest.h"

#include <helvantine/core/Random.h>
#include <helvantine/core/Text.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
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
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/ShaderResource.h>

#include <cmath>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

constexpr unsigned width = 256, height = 144;

/// Drivers filter and round differently, and where a pattern jumps a pixel may fall on the other side.
constexpr Tolerance goldenTolerance{6.0f, 0.01f};

Vec4 mix(const Vec4& a, const Vec4& b, float part)
{
    return a * (1 - part) + b * part;
}

/// Dusk over the sea: a sun, its path on the water, hills, and a bright lamp.
Vec4 dusk(Vec2 uv)
{
    const Vec2 at(uv.x * 16 / 9, uv.y);
    const float horizon = 0.62f,
                hills = horizon - 0.1f * std::abs(std::sin(at.x * 3 + 1) + 0.3f * std::sin(at.x * 11));
    const Vec2 toSun(at.x - 1.2f, at.y - 0.4f), toLamp(at.x - 0.3f, at.y - 0.85f);
    if (toLamp.x * toLamp.x + toLamp.y * toLamp.y < 0.0016f)
        return Vec4(1, 1, 1, 1);
    if (uv.y > horizon) {
        const float path = std::exp(-20 * std::abs(toSun.x)) * (0.6f + 0.4f * std::sin(uv.y * 180));
        return mix(Vec4(0.05f, 0.15f, 0.3f, 1), Vec4(1, 0.8f, 0.4f, 1), path);
    }
    if (uv.y > hills)
        return mix(Vec4(0.1f, 0.2f, 0.15f, 1), Vec4(0.2f, 0.35f, 0.2f, 1), (horizon - uv.y) / 0.13f);
    if (toSun.x * toSun.x + toSun.y * toSun.y < 0.02f)
        return Vec4(1, 0.95f, 0.7f, 1);
    return mix(Vec4(0.15f, 0.2f, 0.5f, 1), Vec4(1, 0.5f, 0.25f, 1), uv.y / horizon);
}

/// Rings in red, stripes in green, a gradient in blue.
Vec4 pattern(Vec2 uv)
{
    const Vec2 at(uv.x * 16 / 9 - 0.9f, uv.y - 0.5f);
    const float rings = 0.5f + 0.5f * std::sin(40 * std::sqrt(at.x * at.x + at.y * at.y));
    return Vec4(rings, 0.5f + 0.5f * std::sin(uv.x * 25 + uv.y * 10), uv.y, 0.25f + 0.75f * uv.x);
}

struct Setting
{
    const char* group;
    const char* property;
    const char* value;
};

/// One picture for each effect, of the dusk and, where the effect takes two textures, the pattern.
class EffectGolden : public EffectTest
{
protected:
    void SetUp() override
    {
        EffectTest::SetUp();
        m_dusk = addTexture(makeImage(width, height, dusk));
        m_pattern = addTexture(makeImage(width, height, pattern));
        m_screen = makeTarget(width, height, DXGI_FORMAT_B8G8R8A8_UNORM, true);
    }

    void TearDown() override
    {
        m_effects.clear();
        EffectTest::TearDown();
    }

    /// In one cell of a grid over the screen, counted along the rows.
    template <class T>
    T& add(std::initializer_list<Setting> settings = {}, int cell = 0, int columns = 1, int rows = 1)
    {
        const SmartRef<T> effect(new T());
        const float cellWidth = 960.0f / columns, cellHeight = 540.0f / rows;
        set(*effect, "Transformation", "Size", formatString("%f, %f", cellWidth, cellHeight));
        set(*effect, "Transformation", "Position",
            formatString("%f, %f, 0", cell % columns * cellWidth, cell / columns * cellHeight));
        set(*effect, "Attributes", "Texture", *m_dusk);
        for (const Setting& setting : settings)
            set(*effect, setting.group, setting.property, setting.value);
        m_effects.push_back(effect.get());
        return *effect;
    }

    template <class T>
    T& addWithPattern(const char* property, std::initializer_list<Setting> settings = {}, int cell = 0,
                      int columns = 1, int rows = 1)
    {
        T& effect = add<T>(settings, cell, columns, rows);
        set(effect, "Attributes", property, *m_pattern);
        return effect;
    }

    void expectGolden(const std::string& name, FxContext context = {})
    {
        context.relativeTime = 0.75f;
        for (const SmartRef<Effect>& effect : m_effects)
            update(*effect, context);
        drawFrame(m_screen.get(), Vec4(0.1f, 0.1f, 0.1f, 1), [&] {
            for (const SmartRef<Effect>& effect : m_effects)
                render(*effect, context);
        });
        EXPECT_TRUE(matchesGolden(read(m_screen.get()), "effect-" + name, goldenTolerance));
    }

    std::vector<SmartRef<Effect>> m_effects;
    SmartRef<TextureResource> m_dusk;
    SmartRef<TextureResource> m_pattern;
    SmartRef<RenderTarget> m_screen;
};

TEST_F(EffectGolden, Texture)
{
    add<TextureEffect>();
    add<TextureEffect>({{"Attributes", "Color", "1, 0.8, 0.6, 0.8"},
                        {"Attributes", "Blend", "2"},
                        {"Transformation", "Rotation", "0, 0, 20"},
                        {"UV", "Wrap", "2"},
                        {"UV", "UV-Rect", "-0.5, -0.5, 1.5, 1.5"}},
                       1, 2, 2);
    expectGolden("texture");
}

TEST_F(EffectGolden, Blend)
{
    for (int type = 0; type < 10; ++type)
        addWithPattern<TextureBlendEffect>(
            "Texture-2",
            {{"Blend", "Blend Type", std::to_string(type).c_str()}, {"Attributes", "Blend", "2"}}, type, 4,
            3);
    expectGolden("blend");
}

TEST_F(EffectGolden, ColorCorrection)
{
    using Effect = TextureColorCorrectionEffect;
    add<Effect>({{"Color Correction", "Brightness", "1.4"}}, 0, 2, 2);
    add<Effect>({{"Color Correction", "Contrast", "2"}}, 1, 2, 2);
    add<Effect>({{"Color Correction", "Saturation", "0.2"}}, 2, 2, 2);
    add<Effect>({{"Color Correction", "Hue", "120"}}, 3, 2, 2);
    expectGolden("color-correction");
}

TEST_F(EffectGolden, Dither)
{
    add<TextureDitherEffect>({{"Dither", "Dither Scale", "128, 144"}}, 0, 2, 1);
    add<TextureDitherEffect>({{"Dither", "Dither Scale", "64, 72"}, {"Dither", "Grayscale", "1"}}, 1, 2, 1);
    expectGolden("dither");
}

TEST_F(EffectGolden, Displacement)
{
    addWithPattern<TextureDisplacementEffect>("Displacement Texture",
                                              {{"UV", "U Power", "0.03"}, {"UV", "V Power", "-0.05"}});
    expectGolden("displacement");
}

TEST_F(EffectGolden, RgbDisplacement)
{
    addWithPattern<TextureRgbDisplacementEffect>("RgbDisplacement Texture", {{"UV", "U Power R", "0.05"},
                                                                             {"UV", "V Power R", "0"},
                                                                             {"UV", "U Power G", "0"},
                                                                             {"UV", "V Power G", "0"},
                                                                             {"UV", "U Power B", "-0.05"},
                                                                             {"UV", "V Power B", "0.02"}});
    expectGolden("rgb-displacement");
}

TEST_F(EffectGolden, Lensflare)
{
    add<TextureEffect>();
    add<TextureLensflareEffect>({{"Attributes", "Blend", "1"}});
    expectGolden("lensflare");
}

TEST_F(EffectGolden, Blur)
{
    for (int cell = 0; cell < 4; ++cell) {
        auto& blur = add<TextureBlurEffect>({{"Blur", "Blur Count", cell < 2 ? "1" : "4"}}, cell, 2, 2);
        const unsigned shrink = cell % 2 ? 4 : 1;
        for (const char* target : {"Vertical Blur Target", "Horizontal Blur Target"})
            set(blur, "Blur", target, *addTarget(Image(width / shrink, height / shrink)));
    }
    expectGolden("blur");
}

TEST_F(EffectGolden, Glow)
{
    auto& glow = add<TextureGlowEffect>({{"Glow", "Threshold", "0.7"},
                                         {"Glow", "Blur Count", "4"},
                                         {"Glow", "Bloom Intensity", "1.5"},
                                         {"Glow", "Bloom Saturation", "1.3"}});
    for (const char* target : {"Glow Target", "Vertical Blur Target", "Horizontal Blur Target"})
        set(glow, "Glow", target, *addTarget(Image(width / 2, height / 2)));
    expectGolden("glow");
}

TEST_F(EffectGolden, DepthOfField)
{
    // Stripes on everything show how sharp it is.
    const DepthScene scene(width, height);
    const SmartRef<RenderTargetResource> picture =
        addTarget(makeImage(width, height, [](Vec2 uv) { return mix(pattern(uv), dusk(uv), 0.5f); }));
    const SmartRef<RenderTargetResource> depth = addTarget(scene.m_surface);
    auto& effect = add<TextureDOFEffect>({{"DOF", "Type", "1"},
                                          {"DOF", "COC", "12"},
                                          {"DOF", "Focal Distance", "4.2"},
                                          {"DOF", "Focal Width", "3"}});
    set(effect, "Attributes", "Texture", *picture);
    set(effect, "DOF", "Depth Source", *depth);
    expectGolden("depth-of-field", scene.m_context);
}

TEST_F(EffectGolden, AmbientOcclusion)
{
    seedRandom(3); // before the first of these effects makes its texture
    const DepthScene scene(width, height);
    const SmartRef<RenderTargetResource> occlusion = addTarget(Image(width, height));
    auto& effect = add<TextureSSAOEffect>({{"SSAO", "Occlusion Radius", "0.8"}, {"SSAO", "Blur Count", "2"}});
    set(effect, "Attributes", "Texture", *addTarget(scene.m_surface));
    set(effect, "SSAO", "SSAO HBlur Target", *addTarget(Image(width, height)));
    set(effect, "SSAO", "SSAO VBlur Target", *occlusion);
    set(add<TextureEffect>(), "Attributes", "Texture", *occlusion);
    expectGolden("ambient-occlusion", scene.m_context);
}

TEST_F(EffectGolden, RayMarching)
{
    const SmartRef<ShaderResource> shader(new ShaderResource());
    ASSERT_EQ(shader->create(R"(
        cbuffer Common : register(b0) { float4x4 worldViewProjection; float2 invScreenSize; float time; };
        Texture2D background : register(t0);
        SamplerState backgroundSampler : register(s0);
        struct Output { float4 position : SV_Position; float2 uv : TEXCOORD0; };
        Output VS(float4 position : POSITION, float2 uv : TEXCOORD0)
        {
            Output output;
            output.position = mul(float4(position.xyz, 1), worldViewProjection);
            output.uv = uv;
            return output;
        }
        float Distance(float3 p) { return length(p) - 1 + 0.06 * sin(9 * p.x + time) * sin(9 * p.y) * sin(9 * p.z); }
        float4 PS(Output input) : SV_Target
        {
            float3 ray = normalize(float3((input.uv.x - 0.5) * 16.0 / 9, 0.5 - input.uv.y, 1));
            float3 p = float3(0, 0, -3);
            for (int i = 0; i < 64; ++i)
                p += ray * Distance(p) * 0.7;
            if (abs(Distance(p)) > 0.01)
                return background.SampleLevel(backgroundSampler, input.uv, 0);
            float2 e = float2(0.01, 0);
            float3 n = normalize(float3(Distance(p + e.xyy) - Distance(p - e.xyy), Distance(p + e.yxy) - Distance(p - e.yxy),
                                        Distance(p + e.yyx) - Distance(p - e.yyx)));
            float light = max(dot(n, normalize(float3(1, 1, -1))), 0);
            return float4(float3(0.1, 0.15, 0.3) + float3(0.9, 0.6, 0.4) * light, 1);
        })",
                             "VS", "PS"),
              "");
    getResourceManager()->addTemporaryResource(shader->getId(), shader.get());
    set(add<RayMarchingEffect>(), "Raymarching", "Shader", *shader);
    expectGolden("ray-marching");
}

TEST_F(EffectGolden, ScreenEffects)
{
    // A small target, cleared and drawn into by children, shows up in two places.
    const SmartRef<RenderTargetResource> target = addTarget(Image(64, 36));
    const SmartRef<RenderTargetEffect> inside(new RenderTargetEffect());
    const SmartRef<ClearScreenEffect> clear(new ClearScreenEffect());
    set(*inside, "Attributes", "Render Target", *target);
    set(*clear, "Attributes", "Color", "0.2, 0.5, 0.4, 1");
    inside->addObject(clear.get(), -1);
    m_effects.push_back(inside.get());
    TextureEffect& child = add<TextureEffect>({{"Transformation", "Rotation", "0, 0, -30"}}, 4, 3, 3);
    inside->addObject(&child, -1);
    m_effects.pop_back();
    for (const int cell : {0, 3})
        set(add<TextureEffect>({}, cell, 2, 2), "Attributes", "Texture", *target);
    expectGolden("screen");
}

} // namespace
