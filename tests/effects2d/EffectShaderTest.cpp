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

float saturate(float value)
{
    return std::clamp(value, 0.0f, 1.0f);
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
    const float radius = 0.5f, fadeStart = 0.2f, fadeEnd = 2.0f, epsilon = 0.05f;
    const float halfHeight = 40, halfWidth = 60, farPlane = 100;
    Matrix projection;
    MatrixPerspectiveFov(&projection, 2 * std::atan(halfHeight / farPlane), halfWidth / halfHeight, 0.1f,
                         farPlane);
    const Matrix toTexture = MatrixMultiply(
        projection, MatrixMultiply(MatrixScaling(0.5f, -0.5f, 1.0f), MatrixTranslation(0.5f, 0.5f, 0.0f)));

    std::vector<float> constants = {radius, fadeStart, fadeEnd, epsilon};
    std::vector<Vec3> offsets;
    const Image directions = makeNoise(14, 1, 15);
    for (unsigned i = 0; i < directions.getWidth(); ++i) {
        const Vec4& d = directions.at(i, 0);
        offsets.push_back(Vec3(d.x - 0.5f, d.y - 0.5f, d.z - 0.5f));
        constants.insert(constants.end(), {offsets.back().x, offsets.back().y, offsets.back().z, 0});
    }
    for (const Vec2& side : {Vec2(-1, 1), Vec2(1, 1), Vec2(1, -1), Vec2(-1, -1)})
        constants.insert(constants.end(), {side.x * halfWidth, side.y * halfHeight, farPlane, 0});
    const Matrix transposed = MatrixTranspose(toTexture);
    const auto* elements = reinterpret_cast<const float*>(&transposed);
    constants.insert(constants.end(), elements, elements + 16);

    const Image expected = makeImage(width, height, [&](Vec2 uv) {
        const Vec4 nd = readNearest(surface, uv), rv = readNearest(noise, uv);
        const Vec3 n(nd.x, nd.y, nd.z);
        const Vec3 random(2 * rv.x - 1, 2 * rv.y - 1, 2 * rv.z - 1);
        const Vec3 p =
            Vec3((2 * uv.x - 1) * halfWidth, (1 - 2 * uv.y) * halfHeight, farPlane) * (nd.w / farPlane);
        float sum = 0;
        for (const Vec3& direction : offsets) {
            const Vec3 offset = direction - random * (2 * dot(direction, random));
            const float side = dot(offset, n);
            const Vec3 q = p + offset * (radius * static_cast<float>((side > 0) - (side < 0)));
            const Vec3 onTexture = MatrixTransformCoord(q, toTexture);
            const Vec3 r = q * (readNearest(surface, Vec2(onTexture.x, onTexture.y)).w / q.z);
            const float distZ = p.z - r.z;
            const float dp = std::max(dot(n, normalize(r - p)), 0.0f);
            sum += distZ > epsilon ? dp * saturate((fadeEnd - distZ) / (fadeEnd - fadeStart)) : 0;
        }
        const float access = saturate(std::pow(1 - sum / 14, 4.0f));
        return Vec4(access, access, access, access);
    });

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
        return makeImage(width, height, [&, step](Vec2 uv) {
            const Vec4 centre = readNearest(surface, uv);
            Vec4 sum = readNearest(occlusion, uv) * weights[5];
            float total = weights[5];
            for (int i = -5; i <= 5; ++i) {
                const Vec2 at = uv + step * static_cast<float>(i);
                const Vec4 other = readNearest(surface, at);
                const float turn = centre.x * other.x + centre.y * other.y + centre.z * other.z;
                if (i == 0 || turn < 0.8f || std::abs(centre.w - other.w) > 0.2f)
                    continue;
                sum = sum + readNearest(occlusion, at) * weights[i + 5];
                total += weights[i + 5];
            }
            return sum * (1 / total);
        });
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
    const float focalDistance = 10, focalWidth = 20, coc = 0.8f;
    std::vector<float> constants = {100, focalDistance, focalWidth, coc};
    for (int i = 0; i < 12; ++i)
        constants.insert(constants.end(), {0.02f * static_cast<float>(i - 6), 0.5f, 0, 0});
    const auto blurFactor = [&](float d) {
        const float t = saturate(std::abs(focalDistance - d) / focalWidth);
        return t * t * (3 - 2 * t);
    };

    const Image mixed = makeImage(width, height, [&](Vec2 uv) {
        const float t = saturate(blurFactor(readNearest(depth, uv).w)) * coc;
        return readNearest(sharp, uv) * (1 - t) + readNearest(blurred, uv) * t;
    });
    EXPECT_TRUE(
        matches(run(TextureEffectType::DOFBlurBuffer, width, height, {sharp, blurred, depth}, constants),
                mixed, floatTolerance));

    // All three samplers are linear here, so depth is filtered as colour is.
    const Image disc = makeImage(width, height, [&](Vec2 uv) {
        Vec4 sum = readNearest(sharp, uv);
        float total = 1;
        const float centreDepth = readNearest(depth, uv).w;
        const float centreBlur = blurFactor(centreDepth);
        for (int i = 0; i < 12 && centreBlur > 0; ++i) {
            const float shift = 0.02f * static_cast<float>(i - 6) * centreBlur * coc;
            const Vec2 at(uv.x + shift, uv.y + shift);
            const float tapDepth = readLinear(depth, at).w;
            const float part = tapDepth > centreDepth ? 1 : blurFactor(tapDepth);
            sum = sum + readLinear(sharp, at) * part;
            total += part;
        }
        return sum * (1 / total);
    });
    EXPECT_TRUE(matches(run(TextureEffectType::DOF, width, height, {sharp, depth}, constants), disc,
                        Tolerance{0.5f}));
}

} // namespace
