// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/core/Report.h>

#include <cmath>

namespace helvantine::test
{

namespace
{

const Vec4 red(1, 0, 0, 1);
const Vec4 green(0, 1, 0, 1);
const Vec4 blue(0, 0, 1, 1);
const Vec4 nothing(0, 0, 0, 0);

class RenderTargetTest : public DeviceTest
{
protected:
    /// A frame into a target.
    template <typename Body>
    Image drawTo(RenderTarget& target, Body body)
    {
        renderer().beginFrame(&target);
        bindDefaults();
        body();
        renderer().endFrame();
        return readImage(renderer(), &target);
    }
};

TEST_F(RenderTargetTest, ClearsHitTheWholeTargetAndOnlyTheirPart)
{
    const SmartRef<Viewport> corner = new Viewport(1, 1, 2, 2);
    const SmartRef<RenderTarget> target =
        makeTarget(5, 3, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_D24_UNORM_S8_UINT);
    const Image image = drawTo(*target, [&] {
        renderer().pushViewport(corner.get());
        renderer().clear(Renderer::ClearColor, red, 0.25f, 0);
        renderer().clear(Renderer::ClearDepth, green, 0.5f, 0);
        renderer().clear(0, green, 0.0f, 0);
        renderer().popViewport();
        setDepth({});
        drawQuad(*m_colorShader, makeQuad(blue, 0.4f, 0, 1, 1, -1)); // before 0.5, behind 0.25
    });
    EXPECT_EQ(image.at(0, 2), red);
    EXPECT_EQ(image.at(4, 2), blue);
}

TEST_F(RenderTargetTest, AClearAmongDrawsHitsTheWholeTargetToo)
{
    const SmartRef<RenderTarget> target = makeTarget(5, 3);
    const SmartRef<Viewport> corner = new Viewport(0, 0, 1, 1);
    const Image image = drawTo(*target, [&] {
        drawQuad(*m_colorShader, makeQuad(red));
        renderer().pushViewport(corner.get());
        renderer().clear(Renderer::ClearColor | Renderer::ClearDepth, green, 1.0f, 0);
        drawQuad(*m_colorShader, makeQuad(blue));
        renderer().popViewport();
    });
    EXPECT_EQ(image.at(0, 0), blue);
    EXPECT_EQ(image.at(4, 2), green);
}

TEST_F(RenderTargetTest, ATargetStartsClearedAndAClearWithoutADrawCounts)
{
    const SmartRef<RenderTarget> target =
        makeTarget(5, 3, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_R32_TYPELESS);
    EXPECT_EQ(readImage(renderer(), target.get()).at(4, 2), nothing);
    std::vector<float> depth;
    ASSERT_TRUE(renderer().readBackDepth(target.get(), depth));
    EXPECT_EQ(depth, std::vector<float>(15, 1.0f));
    renderer().beginFrame(nullptr);
    renderer().pushRenderTarget(target.get());
    renderer().clear(Renderer::ClearColor | Renderer::ClearDepth, green, 0.75f, 0);
    renderer().popRenderTarget();
    renderer().endFrame();
    EXPECT_EQ(readImage(renderer(), target.get()).at(4, 2), green);
    ASSERT_TRUE(renderer().readBackDepth(target.get(), depth));
    EXPECT_EQ(depth, std::vector<float>(15, 0.75f));
}

TEST_F(RenderTargetTest, TheStackReturnsToTheTargetBelow)
{
    const SmartRef<RenderTarget> inner = makeTarget(4, 4);
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(red));
        renderer().pushRenderTarget(inner.get());
        EXPECT_EQ(renderer().getRenderTarget(), inner.get());
        EXPECT_EQ(renderer().getRenderTargetCount(), 2u);
        EXPECT_EQ(renderer().getViewport()->getRect(), Rect(0, 0, 4, 4));
        drawQuad(*m_colorShader, makeQuad(green));
        renderer().popRenderTarget();
        inner->getTexture()->bind(0);
        drawQuad(*m_textureShader, makeQuad(blue, 0.5f, 0, 1, 1, -1));
        inner->getTexture()->unbind(0);
        renderer().pushRenderTarget(nullptr);
        EXPECT_EQ(renderer().getRenderTargetCount(), 1u);
    });
    EXPECT_EQ(image.at(3, 3), red);
    EXPECT_EQ(image.at(33, 3), green);
    renderer().popRenderTarget(); // nothing there
    EXPECT_EQ(renderer().getRenderTarget(), nullptr);
}

TEST_F(RenderTargetTest, ATextureOfTheCurrentTargetLeavesItsSlot)
{
    const SmartRef<RenderTarget> target =
        makeTarget(4, 4, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_R32_TYPELESS);
    drawTo(*target, [&] { renderer().clear(Renderer::ClearColor, red, 1, 0); });
    const Image image = draw([&] {
        bindDefaults();
        target->getTexture()->bind(0);
        renderer().pushRenderTarget(target.get()); // empties slot 0
        renderer().popRenderTarget();
        drawQuad(*m_textureShader, makeQuad(blue, 0.5f, -1, 1, 0, -1));
        target->getTexture()->bind(0);
        drawQuad(*m_textureShader, makeQuad(blue, 0.5f, 0, 1, 1, -1));
    });
    EXPECT_EQ(image.at(3, 3), nothing);
    EXPECT_EQ(image.at(33, 3), red);
    const Image itself = drawTo(*target, [&] {
        target->getTexture()->bind(0); // not while it is drawn to
        drawQuad(*m_textureShader, makeQuad(blue, 0.5f, 0, 1, 1, -1));
    });
    EXPECT_EQ(itself.at(0, 0), red);
    EXPECT_EQ(itself.at(3, 0), nothing);
}

TEST_F(RenderTargetTest, EveryFormatKeepsItsValues)
{
    const Vec4 color(0.25f, 0.5f, -1.5f, 100.0f);
    for (const unsigned format :
         {DXGI_FORMAT_R32G32B32A32_FLOAT, DXGI_FORMAT_R16G16B16A16_FLOAT, DXGI_FORMAT_R8G8B8A8_UNORM,
          DXGI_FORMAT_R32_FLOAT, DXGI_FORMAT_R16_FLOAT, DXGI_FORMAT_B8G8R8A8_UNORM})
    {
        const SmartRef<RenderTarget> target = makeTarget(7, 5, format);
        ASSERT_TRUE(target) << format;
        EXPECT_EQ(target->getFormat(), format);
        const Image image = drawTo(*target, [&] { drawQuad(*m_colorShader, makeQuad(color)); });
        const bool unorm = format == DXGI_FORMAT_R8G8B8A8_UNORM || format == DXGI_FORMAT_B8G8R8A8_UNORM;
        const bool single = format == DXGI_FORMAT_R32_FLOAT || format == DXGI_FORMAT_R16_FLOAT;
        const Vec4 pixel = image.at(6, 4);
        EXPECT_NEAR(pixel.x, 0.25f, 0.003f) << format;
        if (!single) {
            EXPECT_NEAR(pixel.y, 0.5f, 0.003f) << format;
            EXPECT_NEAR(pixel.z, unorm ? 0.0f : -1.5f, 1e-6f) << format;
            EXPECT_NEAR(pixel.w, unorm ? 1.0f : 100.0f, 1e-6f) << format;
        }
    }
    const SmartRef<RenderTarget> bytes = makeTarget(3, 1, DXGI_FORMAT_B8G8R8A8_UNORM);
    drawTo(*bytes, [&] { renderer().clear(Renderer::ClearColor, Vec4(1, 0, 0, 0), 1, 0); });
    std::vector<uint8_t> pixels;
    ASSERT_TRUE(renderer().readBack(bytes.get(), pixels));
    EXPECT_EQ(pixels, (std::vector<uint8_t>{0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0}));
}

TEST_F(RenderTargetTest, MultisamplingSmoothsEdgesOnceResolved)
{
    const SmartRef<RenderTarget> target =
        makeTarget(16, 16, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_D24_UNORM_S8_UINT, 4);
    ASSERT_TRUE(target);
    const Image image = drawTo(*target, [&] {
        renderer().clear(Renderer::ClearColor | Renderer::ClearDepth, nothing, 1, 0);
        const std::vector<Vertex> triangle = {{-1, 1, 0.5f, red}, {1, 1, 0.5f, red}, {-1, -0.9f, 0.5f, red}};
        drawVertices(*m_colorShader, triangle, D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    });
    int partial = 0;
    for (unsigned y = 0; y < 16; ++y) {
        for (unsigned x = 0; x < 16; ++x)
            partial += image.at8(x, y)[0] > 0 && image.at8(x, y)[0] < 255;
    }
    EXPECT_GT(partial, 8);
    EXPECT_EQ(image.at(0, 0), red);
    EXPECT_EQ(image.at(15, 15), nothing);
    const Image shown = draw([&] {
        bindDefaults();
        target->getTexture()->bind(0);
        drawQuad(*m_textureShader, makeQuad(red));
    });
    EXPECT_EQ(shown.at(0, 0), red);
    EXPECT_EQ(shown.at(36, 22), nothing);
}

TEST_F(RenderTargetTest, DepthMapsAreReadAsNumbersAndCompared)
{
    for (const unsigned samples : {1u, 4u}) {
        const SmartRef<RenderTarget> map = makeTarget(4, 4, 0, DXGI_FORMAT_R32_TYPELESS, samples);
        ASSERT_TRUE(map);
        EXPECT_EQ(map->getTexture(), nullptr);
        EXPECT_EQ(map->getFormat(), 0u);
        renderer().beginFrame(map.get());
        bindDefaults();
        renderer().clear(Renderer::ClearColor | Renderer::ClearDepth, red, 1, 0);
        setDepth({});
        drawQuad(*m_colorShader, makeQuad(red, 0.375f, -1, 1, 0, -1));
        renderer().endFrame();
        std::vector<float> depth;
        ASSERT_TRUE(renderer().readBackDepth(map.get(), depth));
        EXPECT_FLOAT_EQ(depth[0], 0.375f);
        EXPECT_FLOAT_EQ(depth[3], 1.0f);

        // Read through the default sampler, which is linear, and through a comparison.
        const SmartRef<Shader> shader = makeShader(
            "return float4(map.Sample(plain, p.uv).r, map.SampleCmpLevelZero(compare, p.uv, 0.5), 0, 1);",
            "Texture2D<float> map : register(t2); SamplerState plain : register(s0);"
            "SamplerComparisonState compare : register(s5);");
        constexpr auto mirror = D3D11_TEXTURE_ADDRESS_MIRROR;
        const SmartRef<TextureSampler> comparison = createTextureSampler(
            D3D11_FILTER_COMPARISON_MIN_MAG_LINEAR_MIP_POINT, mirror, mirror, mirror, D3D11_COMPARISON_LESS);
        const Image image = draw([&] {
            bindDefaults();
            map->getDepthTexture()->bind(2);
            comparison->bind(5);
            drawQuad(*shader, makeQuad(red));
            map->getDepthTexture()->unbind(2);
            comparison->unbind(5);
        });
        EXPECT_NEAR(image.at(2, 2).x, 0.375f, 0.003f);
        EXPECT_EQ(image.at(2, 2).y, 0.0f) << "0.5 is behind";
        EXPECT_EQ(image.at(34, 2).x, 1.0f);
        EXPECT_EQ(image.at(34, 2).y, 1.0f) << "0.5 is in front";
    }
}

TEST_F(RenderTargetTest, ProgramsWithoutAnOutputLeaveTheColour)
{
    const SmartRef<Shader> shader = makeShaderFromText(R"(
float4 VS(float3 position : POSITION) : SV_Position { return float4(position, 1); }
void PS() {}
)");
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(red));
        drawQuad(*shader, makeQuad(green));
    });
    EXPECT_EQ(image.at(3, 3), red);
}

TEST_F(RenderTargetTest, WhatTheDeviceCantMakeIsRefusedWithWords)
{
    const struct
    {
        unsigned width, height, format, samples, quality, depth;
        const char* word;
    } cases[] = {
        {0, 4, 87, 1, 0, 0, "size"},
        {4, 16385, 87, 1, 0, 0, "size"},
        {4, 4, 71, 1, 0, 0, "colour format"},
        {4, 4, 87, 1, 0, 40, "depth format"},
        {4, 4, 0, 1, 0, 0, "without an image"},
        {4, 4, 87, 3, 0, 0, "sample count"},
        {4, 4, 87, 64, 0, 0, "sample count"},
        {4, 4, 87, 1, 1, 0, "sample quality"},
    };
    for (const auto& entry : cases) {
        EXPECT_EQ(createRenderTarget(entry.width, entry.height, entry.format, entry.samples, entry.quality,
                                     entry.depth),
                  nullptr);
        const std::vector<Problem> problems = takeProblems();
        ASSERT_EQ(problems.size(), 1u);
        EXPECT_NE(problems[0].text.find(entry.word), std::string::npos) << problems[0].text;
    }
}

TEST_F(RenderTargetTest, ATextureOutlivesItsTarget)
{
    SmartRef<RenderTarget> target = makeTarget(4, 4);
    SmartRef<Texture> texture = target->getTexture();
    const Image image = draw([&] {
        bindDefaults();
        renderer().pushRenderTarget(target.get());
        drawQuad(*m_colorShader, makeQuad(green));
        renderer().popRenderTarget();
        target = nullptr;
        texture->bind(0);
        drawQuad(*m_textureShader, makeQuad(red));
        texture->unbind(0);
        texture = nullptr; // the recorded draw still needs it
    });
    EXPECT_EQ(image.at(30, 20), green);
}

TEST_F(RenderTargetTest, AClearReachesATextureWhoseTargetDiesWithItsStackEntry)
{
    const Image image = draw([&] {
        bindDefaults();
        SmartRef<RenderTarget> target = makeTarget(4, 4);
        const SmartRef<Texture> texture = target->getTexture();
        renderer().pushRenderTarget(target.get());
        target = nullptr;
        renderer().clear(Renderer::ClearColor, green, 1, 0); // waits for a draw
        renderer().popRenderTarget();
        texture->bind(0);
        drawQuad(*m_textureShader, makeQuad(red));
        texture->unbind(0);
    });
    EXPECT_EQ(image.at(30, 20), green);
}

} // namespace

} // namespace helvantine::test
