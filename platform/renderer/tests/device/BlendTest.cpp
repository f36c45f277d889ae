// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

namespace helvantine::test
{

namespace
{

class BlendTest : public DeviceTest
{
};

/// What a mode makes of a source colour over a destination.
Vec4 blend(BlendMode mode, const Vec4& s, const Vec4& d)
{
    switch (mode) {
    case BlendMode::Additive:
        return {s.x * s.w + d.x, s.y * s.w + d.y, s.z * s.w + d.z, s.w + d.w};
    case BlendMode::Alpha:
        return {s.x * s.w + d.x * (1 - s.w), s.y * s.w + d.y * (1 - s.w), s.z * s.w + d.z * (1 - s.w),
                s.w + d.w * (1 - s.w)};
    case BlendMode::Multiply:
        return {s.x * d.x, s.y * d.y, s.z * d.z, d.w};
    case BlendMode::Premultiplied:
        return s + d * (1 - s.w);
    default:
        return s;
    }
}

TEST_F(BlendTest, EveryModeFollowsItsFormula)
{
    const Vec4 source(0.8f, 0.4f, 0.2f, 0.6f);
    const Vec4 destination(0.2f, 0.5f, 0.6f, 0.3f);
    for (const int number : {0, 1, 2, 3, 4, 17}) {
        const BlendMode mode = static_cast<BlendMode>(number);
        const Image image = draw([&] {
            bindDefaults();
            renderer().clear(Renderer::ClearColor, destination, 1.0f, 0);
            setBlend(mode);
            drawQuad(*m_colorShader, makeQuad(source));
        });
        const Vec4 expected = blend(mode, source, destination);
        EXPECT_TRUE(matches(image, Image(37, 23, expected), rasterTolerance)) << getBlendName(mode) << number;
    }
}

TEST_F(BlendTest, FactorAndWriteMaskCount)
{
    D3D11_BLEND_DESC desc;
    desc.RenderTarget[0].BlendEnable = 1;
    desc.RenderTarget[0].SrcBlend = D3D11_BLEND_BLEND_FACTOR;
    desc.RenderTarget[0].DestBlend = D3D11_BLEND_INV_BLEND_FACTOR;
    desc.RenderTarget[0].RenderTargetWriteMask =
        D3D11_COLOR_WRITE_ENABLE_RED | D3D11_COLOR_WRITE_ENABLE_GREEN;
    const float factor[] = {0.25f, 0.5f, 1, 1};
    const Image image = draw([&] {
        bindDefaults();
        renderer().clear(Renderer::ClearColor, Vec4(1, 0, 0.2f, 0.4f), 1.0f, 0);
        getBlendState(desc)->bind(factor, 0xFFFFFF);
        drawQuad(*m_colorShader, makeQuad(Vec4(0, 1, 1, 1)));
    });
    EXPECT_TRUE(matches(image, Image(37, 23, Vec4(0.75f, 0.5f, 0.2f, 0.4f)), rasterTolerance));
}

TEST_F(BlendTest, SampleMaskZeroDrawsNothing)
{
    const float factor[] = {1, 1, 1, 1};
    const Image image = draw([&] {
        bindDefaults();
        getBlendState(BlendMode::Solid)->bind(factor, 0xFFFFFE);
        drawQuad(*m_colorShader, makeQuad(Vec4(1, 1, 1, 1)));
    });
    EXPECT_TRUE(matches(image, Image(37, 23), {}));
}

/// Catches drivers whose fast path for this format takes channels from the wrong place.
TEST_F(BlendTest, InterpolatedInputsReachTheChannelsTheyAreMeantFor)
{
    const SmartRef<Shader> shader = makeShader("return float4(p.color.b, p.uv.x, p.color.r, p.color.g);");
    auto quad = makeQuad(Vec4(0.1f, 0.9f, 0.6f, 0.3f));
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*shader, quad);
    });
    Image expected(37, 23);
    for (unsigned y = 0; y < 23; ++y) {
        for (unsigned x = 0; x < 37; ++x)
            expected.at(x, y) = Vec4(0.6f, (x + 0.5f) / 37, 0.1f, 0.9f);
    }
    EXPECT_TRUE(matches(image, expected, rasterTolerance));
}

TEST_F(BlendTest, NamesNeedNoRenderer)
{
    const char* names[] = {"Solid", "Additive", "Alpha", "Multiply", "Premultiplied"};
    for (int i = 0; i < blendModeCount; ++i)
        EXPECT_STREQ(getBlendName(static_cast<BlendMode>(i)), names[i]);
    EXPECT_STREQ(getBlendName(static_cast<BlendMode>(5)), "");
    EXPECT_STREQ(getBlendName(static_cast<BlendMode>(-1)), "");
}

} // namespace

} // namespace helvantine::test
