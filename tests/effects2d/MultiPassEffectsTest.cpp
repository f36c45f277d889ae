// SPDX-License-Identifier: MIT
#include "DepthScene.h"
#include "EffectFormulas.h"
#include "EffectTest.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/core/Random.h>
#include <helvantine/effects2d/TextureBlurEffect.h>
#include <helvantine/effects2d/TextureDOFEffect.h>
#include <helvantine/effects2d/TextureGlowEffect.h>
#include <helvantine/effects2d/TextureSSAOEffect.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>
#include <cmath>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

constexpr unsigned width = 37, height = 23;
const Vec4 background(0.2f, 0.4f, 0.6f, 0.8f);

/// A quad's coordinates come through its matrices and miss the middle of a texel by a hair, which filtering shows.
constexpr Tolerance quadTolerance{0.5f, 0.0f};

/// Effects whose passes go through targets of the project, each drawn as a document would have it.
class MultiPassEffects : public EffectTest
{
protected:
    template <class T>
    static SmartRef<T> make(const Resource* source)
    {
        SmartRef<T> effect(new T());
        if (source)
            set(*effect, "Attributes", "Texture", *source);
        return effect;
    }

    static SmartRef<RenderTargetResource> addEmptyTarget(unsigned targetWidth, unsigned targetHeight)
    {
        return addTarget(Image(targetWidth, targetHeight, Vec4(0.7f, 0.1f, 0.3f, 0.9f)));
    }

    /// The current target after the effect, which must have left the stack as it was.
    Image draw(Effect2D& effect, const FxContext& context = {})
    {
        const SmartRef<RenderTarget> target = makeTarget(width, height);
        const Image image = drawOverScreen(effect, target.get(), background, context);
        EXPECT_EQ(g_renderer->getRenderTarget(), nullptr);
        return image;
    }
    void expectNothing(Effect2D& effect, const FxContext& context = {})
    {
        EXPECT_TRUE(matches(draw(effect, context), Image(width, height, background), {}));
    }
};

/// As the chain does it: rows into the vertical target, columns into the horizontal one.
Image blur(Image image, Vec2 vertical, Vec2 horizontal, int cycles)
{
    for (int i = 0; i < cycles; ++i) {
        const Image rows =
            makeImage(static_cast<unsigned>(vertical.x), static_cast<unsigned>(vertical.y),
                      [&](Vec2 uv) { return readBlurred(image, uv, Vec2(1 / vertical.x, 0)); });
        image = makeImage(static_cast<unsigned>(horizontal.x), static_cast<unsigned>(horizontal.y),
                          [&](Vec2 uv) { return readBlurred(rows, uv, Vec2(0, 1 / horizontal.y)); });
    }
    return image;
}

Image onScreen(const Image& image)
{
    return makeImage(width, height, [&](Vec2 uv) { return readLinear(image, uv); });
}

TEST_F(MultiPassEffects, BlurRunsItsCyclesThroughTargetsOfAnySize)
{
    const Image source = makeNoise(19, 13, 41);
    const SmartRef<RenderTargetResource> resource = addTarget(source);
    for (const auto& [vertical, horizontal] :
         {std::pair(Vec2(width, height), Vec2(width, height)), std::pair(Vec2(11, 7), Vec2(5, 17)),
          std::pair(Vec2(1, 1), Vec2(64, 3))})
    {
        const SmartRef<TextureBlurEffect> effect = make<TextureBlurEffect>(resource.get());
        set(*effect, "Blur", "Vertical Blur Target",
            *addEmptyTarget(static_cast<unsigned>(vertical.x), static_cast<unsigned>(vertical.y)));
        set(*effect, "Blur", "Horizontal Blur Target",
            *addEmptyTarget(static_cast<unsigned>(horizontal.x), static_cast<unsigned>(horizontal.y)));
        for (const int count : {-5, 0, 1, 2, 32, 100}) {
            SCOPED_TRACE(testing::Message()
                         << vertical.x << " by " << vertical.y << ", " << count << " cycles");
            set(*effect, "Blur", "Blur Count", std::to_string(count));
            const Image expected = onScreen(blur(source, vertical, horizontal, std::clamp(count, 0, 32)));
            EXPECT_TRUE(matches(draw(*effect), expected, quadTolerance));
        }
    }
}

TEST_F(MultiPassEffects, BlurWithoutASourceOrATargetDrawsNothing)
{
    const SmartRef<RenderTargetResource> source = addTarget(makeNoise(9, 5, 42));
    const SmartRef<RenderTargetResource> target = addEmptyTarget(9, 5);
    const SmartRef<TextureResource> texture = addTexture(makeNoise(9, 5, 43));
    const auto expectNothingOf = [&](const Resource* from, const Resource* vertical,
                                     const Resource* horizontal) {
        const SmartRef<TextureBlurEffect> effect = make<TextureBlurEffect>(from);
        set(*effect, "Blur", "Blur Count", "0");
        if (vertical)
            set(*effect, "Blur", "Vertical Blur Target", *vertical);
        if (horizontal)
            set(*effect, "Blur", "Horizontal Blur Target", *horizontal);
        expectNothing(*effect);
    };
    expectNothingOf(nullptr, target.get(), target.get());
    expectNothingOf(source.get(), nullptr, target.get());
    expectNothingOf(source.get(), target.get(), nullptr);
    expectNothingOf(source.get(), target.get(), texture.get()); // no texture serves as a target
}

struct GlowSetting
{
    float threshold;
    int count;
    bool blurTargets;
};

TEST_F(MultiPassEffects, GlowAddsItsBlurredBrightPartsToTheSource)
{
    const Image noise = makeNoise(width, height, 44);
    const Image source =
        makeImage(width, height, [&](Vec2 uv) { return readNearest(noise, uv) * 1.6f * 0.99f; });
    const SmartRef<RenderTargetResource> resource = addTarget(source);
    const SmartRef<RenderTargetResource> bright = addEmptyTarget(width, height);
    const SmartRef<RenderTargetResource> vertical = addEmptyTarget(15, 9), horizontal = addEmptyTarget(13, 8);
    const GlowCombination combination = {1.5f, 0.8f, 0.25f, 1.75f};
    for (const GlowSetting& setting :
         {GlowSetting{-1, 1, true}, GlowSetting{0, 0, true}, GlowSetting{0.3f, 2, true},
          GlowSetting{0.3f, 2, false}, GlowSetting{0.3f, -1, true}, GlowSetting{5, 40, true}})
    {
        SCOPED_TRACE(testing::Message() << setting.threshold << ", " << setting.count);
        const SmartRef<TextureGlowEffect> effect = make<TextureGlowEffect>(resource.get());
        set(*effect, "Glow", "Glow Target", *bright);
        if (setting.blurTargets) {
            set(*effect, "Glow", "Vertical Blur Target", *vertical);
            set(*effect, "Glow", "Horizontal Blur Target", *horizontal);
        }
        set(*effect, "Glow", "Threshold", std::to_string(setting.threshold));
        set(*effect, "Glow", "Blur Count", std::to_string(setting.count));
        set(*effect, "Glow", "Bloom Intensity", "1.5");
        set(*effect, "Glow", "Source Intensity", "0.8");
        set(*effect, "Glow", "Bloom Saturation", "0.25");
        set(*effect, "Glow", "Source Saturation", "1.75");
        set(*effect, "UV", "Wrap", "1"); // plays no part

        const float threshold = std::clamp(setting.threshold, 0.0f, 1.0f);
        const Image glow =
            makeImage(width, height, [&](Vec2 uv) { return glowColor(readNearest(source, uv), threshold); });
        const int cycles = setting.blurTargets ? std::clamp(setting.count, 0, 32) : 0;
        const Image bloom = blur(glow, Vec2(15, 9), Vec2(13, 8), cycles);
        const Image expected = makeImage(width, height, [&](Vec2 uv) {
            return combineGlow(readLinear(bloom, uv), readNearest(source, uv), combination);
        });
        EXPECT_TRUE(matches(draw(*effect), expected, quadTolerance));
    }
}

TEST_F(MultiPassEffects, GlowNeedsItsTargetAndASource)
{
    const SmartRef<RenderTargetResource> source = addTarget(makeNoise(9, 5, 45));
    expectNothing(*make<TextureGlowEffect>(source.get()));
    const SmartRef<TextureGlowEffect> effect = make<TextureGlowEffect>(nullptr);
    set(*effect, "Glow", "Glow Target", *addEmptyTarget(9, 5));
    expectNothing(*effect);
}

TEST_F(MultiPassEffects, DepthOfFieldBlursTheWholeTargetByDepth)
{
    const DepthScene scene(width, height);
    const Image sharp = makeNoise(width, height, 46), blurred = makeNoise(9, 5, 47);
    const SmartRef<RenderTargetResource> source = addTarget(sharp), depth = addTarget(scene.m_surface);
    const SmartRef<TextureDOFEffect> effect = make<TextureDOFEffect>(source.get());
    set(*effect, "DOF", "Depth Source", *depth);
    set(*effect, "DOF", "Focal Distance", "5");
    set(*effect, "DOF", "Focal Width", "6");
    set(*effect, "Transformation", "Rotation", "0, 0, 30"); // plays no part
    set(*effect, "Attributes", "Blend", "1");               // nor does this

    expectNothing(*effect, scene.m_context); // without a blurred picture

    set(*effect, "DOF", "Blur Source", *addTarget(blurred));
    set(*effect, "DOF", "COC", "0.75");
    Focus focus = {5, 6, 0.75f};
    const Image mixed = makeImage(width, height, [&](Vec2 uv) {
        return mixByDepth(readNearest(sharp, uv), readLinear(blurred, uv), readNearest(scene.m_surface, uv).w,
                          focus);
    });
    EXPECT_TRUE(matches(draw(*effect, scene.m_context), mixed, quadTolerance));

    set(*effect, "DOF", "Type", "1");
    set(*effect, "DOF", "Blur Source", "");
    set(*effect, "DOF", "COC", "6");
    focus.coc = 6;
    std::vector<float> shifts;
    for (const float x : {-0.326212f, -0.840144f, -0.840144f, -0.203345f, 0.96234f, 0.473434f, 0.519456f,
                          0.185461f, 0.507431f, 0.89642f, -0.32194f, -0.791559f})
        shifts.push_back(x * 0.5f / width);
    const Image disc = makeImage(width, height, [&](Vec2 uv) {
        return readDiscBlurred(sharp, scene.m_surface, false, uv, shifts, focus);
    });
    // Coordinates have a few bits within a texel: near the border of two texels a tap may read either's depth.
    EXPECT_TRUE(matches(draw(*effect, scene.m_context), disc, Tolerance{0.5f, 0.05f}));
}

TEST_F(MultiPassEffects, DepthOfFieldNeedsTargetsForPictureAndDepth)
{
    const SmartRef<RenderTargetResource> target = addEmptyTarget(9, 5);
    const SmartRef<TextureResource> texture = addTexture(makeNoise(9, 5, 48));
    for (const char* type : {"0", "1"}) {
        const SmartRef<TextureDOFEffect> withoutDepth = make<TextureDOFEffect>(target.get());
        set(*withoutDepth, "DOF", "Type", type);
        set(*withoutDepth, "DOF", "Blur Source", *target);
        expectNothing(*withoutDepth);
        const SmartRef<TextureDOFEffect> ofTexture = make<TextureDOFEffect>(texture.get());
        set(*ofTexture, "DOF", "Type", type);
        set(*ofTexture, "DOF", "Blur Source", *target);
        set(*ofTexture, "DOF", "Depth Source", *target);
        expectNothing(*ofTexture);
    }
}

/// What chance makes for the effects, when it was seeded before the first of them.
struct Chance
{
    explicit Chance(uint32_t seed) : random(256, 256)
    {
        seedRandom(seed);
        for (unsigned y = 0; y < 256; ++y) {
            for (unsigned x = 0; x < 256; ++x) {
                const auto channel = [] {
                    return static_cast<float>(static_cast<uint8_t>(randomFloat(0, 1) * 255)) / 255;
                };
                const float r = channel(), g = channel(), b = channel(), a = channel();
                random.at(x, y) = Vec4(r, g, b, a);
            }
        }
        for (const Vec3& direction :
             {Vec3(1, 1, 1), Vec3(-1, -1, -1), Vec3(-1, 1, 1), Vec3(1, -1, -1), Vec3(1, 1, -1),
              Vec3(-1, -1, 1), Vec3(-1, 1, -1), Vec3(1, -1, 1), Vec3(-1, 0, 0), Vec3(1, 0, 0), Vec3(0, -1, 0),
              Vec3(0, 1, 0), Vec3(0, 0, -1), Vec3(0, 0, 1)})
            offsets.push_back(normalize(direction) * randomFloat(0.25f, 1));
        seedRandom(seed);
    }

    Image random;
    std::vector<Vec3> offsets;
};

TEST_F(MultiPassEffects, OcclusionEndsInItsTargetAndLeavesTheScreen)
{
    const DepthScene scene(width, height);
    const Chance chance(7);
    const SmartRef<RenderTargetResource> surface = addTarget(scene.m_surface);
    const SmartRef<RenderTargetResource> rows = addEmptyTarget(width, height),
                                         result = addEmptyTarget(width, height);
    const SmartRef<TextureSSAOEffect> effect = make<TextureSSAOEffect>(surface.get());
    set(*effect, "SSAO", "SSAO HBlur Target", *rows);
    set(*effect, "SSAO", "SSAO VBlur Target", *result);
    set(*effect, "SSAO", "Occlusion Radius", "0.8");

    Occlusion by;
    by.radius = 0.8f;
    by.offsets = chance.offsets;
    by.halfWidth = scene.m_halfWidth;
    by.halfHeight = scene.m_halfHeight;
    by.farPlane = DepthScene::farPlane;
    by.viewToTexture =
        MatrixMultiply(scene.m_context.projection,
                       MatrixMultiply(MatrixScaling(0.5f, -0.5f, 1), MatrixTranslation(0.5f, 0.5f, 0)));
    const Image raw = makeImage(
        width, height, [&](Vec2 uv) { return readOcclusion(scene.m_surface, chance.random, uv, by); });

    for (const int count : {-2, 0, 1, 3, 7, 20}) {
        SCOPED_TRACE(count);
        set(*effect, "SSAO", "Blur Count", std::to_string(count));
        Image expected = raw;
        for (int i = 0; i < std::min(count, 7); ++i) {
            for (const Vec2& step : {Vec2(0, 1.0f / height), Vec2(1.0f / width, 0)})
                expected = makeImage(width, height, [&](Vec2 uv) {
                    return readOcclusionBlurred(scene.m_surface, expected, uv, step);
                });
        }
        expectNothing(*effect, scene.m_context);
        // Where a point beside another's border is read, rounding decides which; blurring spreads that.
        EXPECT_TRUE(matches(read(result->getRenderTarget()), expected, Tolerance{4, 0.03f}));
    }
    float darkest = 1;
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            darkest = std::min(darkest, raw.at(x, y).x);
    EXPECT_LT(darkest, 0.8f); // or there was nothing to compare
}

TEST_F(MultiPassEffects, OcclusionNeedsAllItsTargets)
{
    const SmartRef<RenderTargetResource> surface = addEmptyTarget(9, 5), other = addEmptyTarget(9, 5);
    const SmartRef<TextureResource> texture = addTexture(makeNoise(9, 5, 49));
    const Image untouched = read(other->getRenderTarget());
    const auto expectUntouched = [&](const Resource* source, const char* property) {
        const SmartRef<TextureSSAOEffect> effect = make<TextureSSAOEffect>(source);
        set(*effect, "SSAO", property, *other);
        expectNothing(*effect);
        EXPECT_TRUE(matches(read(other->getRenderTarget()), untouched, {}));
    };
    expectUntouched(surface.get(), "SSAO HBlur Target");
    expectUntouched(surface.get(), "SSAO VBlur Target");
    const SmartRef<TextureSSAOEffect> ofTexture = make<TextureSSAOEffect>(texture.get());
    set(*ofTexture, "SSAO", "SSAO HBlur Target", *other);
    set(*ofTexture, "SSAO", "SSAO VBlur Target", *other);
    expectNothing(*ofTexture);
    EXPECT_TRUE(matches(read(other->getRenderTarget()), untouched, {}));
}

} // namespace
