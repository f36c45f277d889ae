// SPDX-License-Identifier: MIT
#include "EffectFormulas.h"
#include "EffectTest.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/renderer/ConstantBuffer.h>

#include <algorithm>
#include <cmath>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

const Vec4 tint(0.5f, 0.25f, 1.0f, 0.75f);

Vec4 tinted(const Vec4& c)
{
    return c * tint;
}

/// Draws programs over a whole target and compares with the formula of each pixel.
class EffectShader : public EffectTest
{
protected:
    EffectShader() : m_effect(new ProbeEffect()) { m_effect->m_color = tint; }

    /// inputs in slots 0, 1, …; constants at b1 of both stages. The second coordinates run from right to left.
    Image run(TextureEffectType type, unsigned width, unsigned height, const std::vector<Image>& inputs,
              const std::vector<float>& constants, const std::function<void()>& writeQuad = {})
    {
        SmartRef<ConstantBuffer> buffer(new ConstantBuffer());
        EXPECT_TRUE(buffer->create(512));
        std::copy(constants.begin(), constants.end(), static_cast<float*>(buffer->map()));
        buffer->unmap();

        EXPECT_TRUE(ProbeEffect::prepareSharedData());
        TextureSampler* sampler = TextureEffect::s_sharedData->m_clampSampler.get();
        std::vector<SmartRef<Texture>> textures;
        std::vector<ProbeEffect::Input> passInputs;
        for (const Image& input : inputs) {
            textures.push_back(makeTexture(input));
            passInputs.push_back({textures.back().get(), m_point ? m_point.get() : sampler});
        }
        const SmartRef<RenderTarget> target = makeTarget(width, height);
        drawFrame(nullptr, Vec4(), [&] {
            const Vec4 secondUvRect(1, 0, 0, 1);
            m_effect->m_corners = {Vec3(-1, 1, 0), Vec3(1, 1, 0), Vec3(1, -1, 0), Vec3(-1, -1, 0)};
            if (writeQuad)
                writeQuad();
            else
                m_effect->writeEffectQuad(&secondUvRect);
            ProbeEffect::bindPassStates();
            buffer->bindVS(1);
            buffer->bindPS(1);
            ProbeEffect::drawPass(type, target.get(), passInputs);
        });
        return read(target.get());
    }

    void usePointSampler()
    {
        m_point = createTextureSampler(D3D11_FILTER_MIN_MAG_MIP_POINT, D3D11_TEXTURE_ADDRESS_CLAMP,
                                       D3D11_TEXTURE_ADDRESS_CLAMP, D3D11_TEXTURE_ADDRESS_CLAMP,
                                       D3D11_COMPARISON_NEVER);
    }

    SmartRef<ProbeEffect> m_effect;
    SmartRef<TextureSampler> m_point;
};

TEST_F(EffectShader, EveryProgramOfTheTableCompilesAndDraws)
{
    EXPECT_EQ(getTextureEffectProgram(static_cast<TextureEffectType>(-1)), nullptr);
    EXPECT_EQ(getTextureEffectProgram(static_cast<TextureEffectType>(26)), nullptr);
    const Image grey(3, 2, Vec4(0.5f, 0.5f, 0.5f, 0.5f));
    for (int32_t i = 0; i < textureEffectTypeCount; ++i) {
        const auto type = static_cast<TextureEffectType>(i);
        ASSERT_NE(TextureEffect::s_shaderCache->getShader(type), nullptr)
            << getTextureEffectProgram(type)->pixelEntry;
        run(type, 3, 2, {grey, grey, grey}, std::vector<float>(92, 0.25f));
    }
}

TEST_F(EffectShader, TextureIsMultipliedByTheVertexColour)
{
    const Image source = makeNoise(7, 5, 1);
    const Image expected = makeImage(7, 5, [&](Vec2 uv) { return tinted(readNearest(source, uv)); });
    EXPECT_TRUE(matches(run(TextureEffectType::Texture, 7, 5, {source}, {}), expected, floatTolerance));
}

TEST_F(EffectShader, ColourCorrectionAppliesItsFourStepsInOrder)
{
    const Image source = makeNoise(7, 5, 2);
    const ColorCorrection cases[] = {
        {},           {.brightness = 0.5f}, {.contrast = 2},      {.saturation = 0},
        {.hue = 120}, {.hue = 360},         {1.5f, 0.75f, 2, -75}};
    for (const ColorCorrection& c : cases) {
        const Image expected =
            makeImage(7, 5, [&](Vec2 uv) { return tinted(correctColor(readNearest(source, uv), c)); });
        EXPECT_TRUE(matches(run(TextureEffectType::ColorCorrection, 7, 5, {source},
                                {c.brightness, c.contrast, c.saturation, c.hue}),
                            expected, floatTolerance));
    }
}

TEST_F(EffectShader, BlendsFollowTheirFormulas)
{
    usePointSampler(); // dodge and burn ask for exact ones and zeros
    const Image base = makeNoise(9, 5, 3);
    const Image blend = makeNoise(9, 5, 4);
    for (auto i = static_cast<int32_t>(TextureEffectType::BlendLinear);
         i <= static_cast<int32_t>(TextureEffectType::BlendMultiply); ++i)
    {
        const auto type = static_cast<TextureEffectType>(i);
        SCOPED_TRACE(getTextureEffectProgram(type)->pixelEntry);
        for (const float threshold : {0.0f, 0.3f, 1.0f}) {
            const Image expected = makeImage(9, 5, [&](Vec2 uv) {
                return tinted(blendColors(type, readNearest(base, uv),
                                          readNearest(blend, Vec2(1 - uv.x, uv.y)), threshold));
            });
            EXPECT_TRUE(matches(run(type, 9, 5, {base, blend}, {threshold}), expected, floatTolerance));
        }
    }
}

TEST_F(EffectShader, GlowStretchesWhatIsAboveTheThreshold)
{
    const Image source = makeNoise(7, 5, 5);
    for (const float threshold : {0.0f, 0.25f, 0.9f}) {
        const Image expected =
            makeImage(7, 5, [&](Vec2 uv) { return glowColor(readNearest(source, uv), threshold); });
        EXPECT_TRUE(
            matches(run(TextureEffectType::Glow, 7, 5, {source}, {threshold}), expected, floatTolerance));
    }
}

TEST_F(EffectShader, GlowCombinationDarkensTheSourceUnderTheBloom)
{
    const Image bloom = makeNoise(7, 5, 6);
    const Image source = makeNoise(7, 5, 7);
    const GlowCombination c = {1.5f, 0.8f, 0.25f, 1.75f};
    const Image expected = makeImage(7, 5, [&](Vec2 uv) {
        return tinted(combineGlow(readNearest(bloom, uv), readNearest(source, uv), c));
    });
    EXPECT_TRUE(matches(run(TextureEffectType::GlowCombine, 7, 5, {bloom, source},
                            {0, c.bloomIntensity, c.sourceIntensity, c.bloomSaturation, c.sourceSaturation}),
                        expected, floatTolerance));
}

TEST_F(EffectShader, BlurWeighsNineTexelsOfTheTargetsSize)
{
    const Image source = makeNoise(14, 11, 8);
    const auto blurred = [&](Vec2 step) {
        return makeImage(7, 5, [&, step](Vec2 uv) { return readBlurred(source, uv, step); });
    };
    EXPECT_TRUE(matches(run(TextureEffectType::HorizontalBlur, 7, 5, {source}, {}),
                        blurred(Vec2(1 / 7.0f, 0)), floatTolerance));
    EXPECT_TRUE(matches(run(TextureEffectType::VerticalBlur, 7, 5, {source}, {}), blurred(Vec2(0, 1 / 5.0f)),
                        floatTolerance));
    const Image flat(5, 5, Vec4(0.6f, 0.2f, 1, 0.4f));
    EXPECT_TRUE(matches(run(TextureEffectType::VerticalBlur, 5, 5, {flat}, {}), flat, floatTolerance));
}

TEST_F(EffectShader, LensflareDrawsAGhostThroughTheCentre)
{
    const Image source = makeNoise(6, 4, 9);
    // An even size: in the very centre the direction to the centre isn't defined.
    const Image expected = makeImage(8, 6, [&](Vec2 uv) { return readGhost(source, uv); });
    EXPECT_TRUE(matches(run(TextureEffectType::Lensflare, 8, 6, {source}, {6, 4}), expected, floatTolerance));
}

TEST_F(EffectShader, DisplacementShiftsByTheMap)
{
    const Image source = makeNoise(7, 5, 10);
    const Image map = makeNoise(7, 5, 11);
    const auto mapAt = [&](Vec2 uv) { return readNearest(map, Vec2(1 - uv.x, uv.y)); };
    const Image expected = makeImage(
        7, 5, [&](Vec2 uv) { return tinted(readDisplaced(source, uv, mapAt(uv), Vec2(0.2f, -0.3f))); });
    EXPECT_TRUE(matches(run(TextureEffectType::Displacement, 7, 5, {source, map}, {0.2f, -0.3f}), expected,
                        floatTolerance));

    const Vec2 powers[] = {{0.1f, 0.2f}, {-0.3f, 0.4f}, {0.5f, -0.6f}};
    const Image expectedRgb =
        makeImage(7, 5, [&](Vec2 uv) { return tinted(readRgbDisplaced(source, uv, mapAt(uv), powers)); });
    EXPECT_TRUE(matches(
        run(TextureEffectType::RgbDisplacement, 7, 5, {source, map}, {0.1f, 0.2f, -0.3f, 0.4f, 0.5f, -0.6f}),
        expectedRgb, floatTolerance));
}

TEST_F(EffectShader, DitherComparesWithTheBayerMatrix)
{
    usePointSampler(); // white stays white if it is read exactly
    const unsigned width = 19, height = 11;
    const Image source = makeNoise(width, height, 12);
    for (const bool grayscale : {false, true}) {
        const Image expected = makeImage(width, height, [&](Vec2 uv) {
            return tinted(ditherColor(readNearest(source, uv), uv * Vec2(width, height), grayscale));
        });
        const auto type = grayscale ? TextureEffectType::DitherGrayscale : TextureEffectType::Dither;
        EXPECT_TRUE(matches(run(type, width, height, {source}, {width, height}), expected, floatTolerance));
    }
}

/// A surface of two planes with some relief, and normals that lean either way.
Image makeNormalDepth(unsigned width, unsigned height)
{
    const Image noise = makeNoise(width, height, 13);
    return makeImage(width, height, [&](Vec2 uv) {
        const Vec4 p = readNearest(noise, uv);
        const Vec3 n = normalize(Vec3((p.x - 0.5f) * 0.6f, (p.y - 0.5f) * 0.6f, -1));
        return Vec4(n.x, n.y, n.z, (uv.x < 0.45f ? 4.0f : 4.6f) + p.w * 0.15f);
    });
}

TEST_F(EffectShader, OcclusionFollowsItsFormula)
{
    const unsigned width = 9, height = 7;
    const Image surface = makeNormalDepth(width, height);
    const Image noise = makeNoise(width, height, 14);
    Occlusion by;
    by.halfHeight = 40;
    by.halfWidth = 60;
    by.farPlane = 100;
    Matrix projection;
    MatrixPerspectiveFov(&projection, 2 * std::atan(by.halfHeight / by.farPlane),
                         by.halfWidth / by.halfHeight, 0.1f, by.farPlane);
    by.viewToTexture = MatrixMultiply(
        projection, MatrixMultiply(MatrixScaling(0.5f, -0.5f, 1.0f), MatrixTranslation(0.5f, 0.5f, 0.0f)));

    std::vector<float> constants = {by.radius, by.fadeStart, by.fadeEnd, by.epsilon};
    const Image directions = makeNoise(14, 1, 15);
    for (unsigned i = 0; i < directions.getWidth(); ++i) {
        const Vec4& d = directions.at(i, 0);
        by.offsets.push_back(Vec3(d.x - 0.5f, d.y - 0.5f, d.z - 0.5f));
        constants.insert(constants.end(), {by.offsets.back().x, by.offsets.back().y, by.offsets.back().z, 0});
    }
    for (const Vec2& side : {Vec2(-1, 1), Vec2(1, 1), Vec2(1, -1), Vec2(-1, -1)})
        constants.insert(constants.end(), {side.x * by.halfWidth, side.y * by.halfHeight, by.farPlane, 0});
    const Matrix transposed = MatrixTranspose(by.viewToTexture);
    const auto* elements = reinterpret_cast<const float*>(&transposed);
    constants.insert(constants.end(), elements, elements + 16);

    const Image expected =
        makeImage(width, height, [&](Vec2 uv) { return readOcclusion(surface, noise, uv, by); });

    usePointSampler();
    const auto writeRays = [&] {
        m_effect->writeFullTargetQuad(
            {Vec4(0, 0, 0, 0), Vec4(1, 0, 0, 0), Vec4(3, 0, 0, 0), Vec4(2, 0, 0, 0)});
    };
    const Image actual = run(TextureEffectType::SSAO, width, height, {surface, noise}, constants, writeRays);
    EXPECT_TRUE(matches(actual, expected, Tolerance{0.5f}));
    EXPECT_LT(actual.at(4, 3).x, 0.95f); // at the step between the planes there is some
}

TEST_F(EffectShader, OcclusionBlurStopsAtEdges)
{
    const unsigned width = 13, height = 13;
    const Image surface = makeNormalDepth(width, height);
    const Image occlusion = makeNoise(width, height, 16);
    const float weights[] = {0.05f, 0.05f, 0.1f, 0.1f, 0.1f, 0.2f, 0.1f, 0.1f, 0.1f, 0.05f, 0.05f};
    std::vector<float> constants = {1.0f / width, 1.0f / height, 0, 0};
    for (const float weight : weights)
        constants.insert(constants.end(), {weight, 0, 0, 0});

    const auto blurred = [&](Vec2 step) {
        return makeImage(width, height,
                         [&, step](Vec2 uv) { return readOcclusionBlurred(surface, occlusion, uv, step); });
    };
    usePointSampler();
    EXPECT_TRUE(matches(run(TextureEffectType::SSAOBlurH, width, height, {surface, occlusion}, constants),
                        blurred(Vec2(1.0f / width, 0)), floatTolerance));
    EXPECT_TRUE(matches(run(TextureEffectType::SSAOBlurV, width, height, {surface, occlusion}, constants),
                        blurred(Vec2(0, 1.0f / height)), floatTolerance));
}

TEST_F(EffectShader, DepthOfFieldBlursByDepth)
{
    const unsigned width = 9, height = 7;
    const Image sharp = makeNoise(width, height, 17);
    const Image blurred = makeNoise(width, height, 18);
    // Some at 0, some beyond the focal width, some in focus.
    Image depth = makeImage(width, height, [noise = makeNoise(width, height, 19)](Vec2 uv) {
        return Vec4(0, 0, 0, readNearest(noise, uv).w * 40);
    });
    depth.at(4, 3).w = 10;
    const Focus focus = {10, 20, 0.8f};
    std::vector<float> constants = {100, focus.distance, focus.width, focus.coc};
    std::vector<float> shifts;
    for (int i = 0; i < 12; ++i) {
        shifts.push_back(0.02f * static_cast<float>(i - 6));
        constants.insert(constants.end(), {shifts.back(), 0.5f, 0, 0});
    }

    const Image mixed = makeImage(width, height, [&](Vec2 uv) {
        return mixByDepth(readNearest(sharp, uv), readNearest(blurred, uv), readNearest(depth, uv).w, focus);
    });
    EXPECT_TRUE(
        matches(run(TextureEffectType::DOFBlurBuffer, width, height, {sharp, blurred, depth}, constants),
                mixed, floatTolerance));

    // All three samplers are linear here, so depth is filtered as colour is.
    const Image disc = makeImage(
        width, height, [&](Vec2 uv) { return readDiscBlurred(sharp, depth, true, uv, shifts, focus); });
    EXPECT_TRUE(matches(run(TextureEffectType::DOF, width, height, {sharp, depth}, constants), disc,
                        Tolerance{0.5f}));
}

} // namespace
