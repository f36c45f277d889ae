// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/core/Report.h>
#include <helvantine/renderer/IndexBuffer.h>
#include <helvantine/renderer/Query.h>
#include <helvantine/testsupport/AllocationCount.h>

namespace helvantine::test
{

namespace
{

const Vec4 red(1, 0, 0, 1);
const Vec4 green(0, 1, 0, 1);

class LifetimeTest : public DeviceTest
{
};

/// An object of every kind, made while there was a renderer.
struct Objects
{
    SmartRef<RenderTarget> target;
    SmartRef<Texture> texture;
    SmartRef<TextureSampler> sampler;
    SmartRef<VertexBuffer> vertices;
    SmartRef<VertexBuffer> dynamicVertices;
    SmartRef<IndexBuffer> indices;
    SmartRef<ConstantBuffer> constants;
    SmartRef<Shader> shader;
    SmartRef<Query> query;
    SmartRef<BlendState> blend;
    SmartRef<RasterizerState> rasterizer;
    SmartRef<DepthStencilState> depthStencil;
};

TEST_F(LifetimeTest, ObjectsMayOutliveTheirRenderer)
{
    const float bytes[16] = {};
    Objects objects;
    objects.target = makeTarget(4, 4, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_R32_TYPELESS, 4);
    objects.texture = makeTexture(1, 1, {0xFFFFFFFF});
    objects.sampler =
        createTextureSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_WRAP,
                             D3D11_TEXTURE_ADDRESS_WRAP, D3D11_TEXTURE_ADDRESS_WRAP, D3D11_COMPARISON_NEVER);
    objects.vertices = createVertexBuffer(bytes, sizeof bytes, 16, D3D11_USAGE_IMMUTABLE, 0, 0);
    objects.dynamicVertices =
        createVertexBuffer(nullptr, 64, 16, D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE, 0);
    objects.indices = createIndexBuffer(bytes, 16, D3D11_USAGE_IMMUTABLE, DXGI_FORMAT_R32_UINT);
    objects.constants = makeConstants(red);
    objects.shader = makeShader("return 1;");
    objects.query = createQuery();
    objects.blend = getBlendState(BlendMode::Alpha);
    objects.rasterizer = getRasterizerState({});
    objects.depthStencil = getDepthStencilState({});
    EXPECT_NE(objects.dynamicVertices->map(D3D11_MAP_WRITE_DISCARD), nullptr);
    EXPECT_EQ(objects.vertices->map(D3D11_MAP_WRITE_DISCARD), nullptr) << "immutable";
    const SmartRef<Texture> depthTexture = objects.target->getDepthTexture();
    TearDown(); // the renderer goes, all of it bound or not

    for (int round = 0; round < 2; ++round) {
        const float factor[] = {1, 1, 1, 1};
        objects.texture->bind(0);
        objects.texture->unbind(0);
        objects.target->getTexture()->bind(1);
        depthTexture->bind(2);
        objects.sampler->bind(0);
        objects.sampler->unbind(0);
        objects.vertices->bind(0);
        objects.vertices->unbind(0);
        EXPECT_EQ(objects.dynamicVertices->map(D3D11_MAP_WRITE_DISCARD), nullptr);
        objects.dynamicVertices->unmap();
        objects.indices->bind();
        EXPECT_EQ(objects.constants->map(), nullptr);
        objects.constants->unmap();
        objects.constants->bindVS(0);
        objects.constants->bindPS(0);
        objects.shader->bind(nullptr);
        objects.shader->unbind();
        objects.query->begin();
        objects.query->end();
        EXPECT_FALSE(objects.query->dataAvailable());
        objects.blend->bind(factor, 0xFFFFFF);
        objects.rasterizer->bind();
        objects.depthStencil->bind(0);
        EXPECT_EQ(objects.target->getWidth(), 4u);
        if (round > 0)
            break;
        SetUp(); // and means nothing to the next renderer
        renderer().beginFrame(objects.target.get());
        EXPECT_EQ(renderer().getRenderTarget(), nullptr);
        renderer().endFrame();
        std::vector<uint8_t> pixels;
        EXPECT_FALSE(renderer().readBack(objects.target.get(), pixels));
    }
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(green));
    });
    EXPECT_EQ(image.at(3, 3), green);
}

TEST_F(LifetimeTest, WithoutARendererNothingIsMade)
{
    TearDown();
    EXPECT_EQ(g_renderer, nullptr);
    EXPECT_EQ(createRenderTarget(4, 4, 87, 1, 0, 0), nullptr);
    EXPECT_EQ(createVertexBuffer(nullptr, 64, 16, D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE, 0), nullptr);
    EXPECT_EQ(createQuery(), nullptr);
    EXPECT_EQ(getBlendState(BlendMode::Solid), nullptr);
    EXPECT_EQ(getRasterizerState({}), nullptr);
    EXPECT_EQ(getDepthStencilState({}), nullptr);
    EXPECT_FALSE(ConstantBuffer().create(16));
    ShaderFromMemoryParams params;
    EXPECT_EQ(createShaderFromMemory(params), nullptr);
    EXPECT_FALSE(params.errorText.empty());

    Renderer untouched; // created by nobody
    untouched.beginFrame(nullptr);
    untouched.clear(3, red, 1, 0);
    untouched.pushRenderTarget(nullptr);
    untouched.popRenderTarget();
    untouched.endFrame();
    untouched.present();
    EXPECT_EQ(untouched.getBackBuffer(), nullptr);
    EXPECT_STREQ(untouched.getDeviceName(), "");
    EXPECT_TRUE(takeProblems().empty());
}

TEST_F(LifetimeTest, ASecondRendererIsRefusedWhileThereIsOne)
{
    Renderer second;
    EXPECT_FALSE(second.create({.Width = 4, .Height = 4}, false, false, 1, 0, nullptr, true));
    EXPECT_EQ(takeProblems().size(), 1u);
    EXPECT_EQ(g_renderer, &renderer());
    EXPECT_STRNE(renderer().getDeviceName(), "");
}

TEST_F(LifetimeTest, ImpossibleBackBuffersAreRefused)
{
    TearDown();
    Renderer refused;
    EXPECT_FALSE(refused.create({.Width = 0, .Height = 4}, false, false, 1, 0, nullptr, true));
    EXPECT_EQ(takeProblems().size(), 1u);
    EXPECT_FALSE(refused.create({.Width = 4, .Height = 4}, false, false, 1, 0, nullptr, false))
        << "no window";
    EXPECT_EQ(takeProblems().size(), 1u);
    EXPECT_EQ(g_renderer, nullptr);
    EXPECT_TRUE(refused.create({.Width = 4, .Height = 4}, false, false, 1, 0, nullptr, true))
        << "a third try";
}

TEST_F(LifetimeTest, WhatIsRecordedOutsideAFrameComesFirstInTheNext)
{
    const SmartRef<RenderTarget> target = makeTarget(4, 4);
    renderer().pushRenderTarget(target.get());
    bindDefaults();
    drawQuad(*m_colorShader, makeQuad(red, 0.5f, -1, 1, 0, -1));
    renderer().clear(Renderer::ClearDepth, red, 1, 0); // it has none
    renderer().popRenderTarget();
    drawQuad(*m_colorShader, makeQuad(green)); // no target: nothing
    EXPECT_EQ(readImage(renderer(), target.get()).at(0, 0), red);
}

TEST_F(LifetimeTest, ASecondBeginFrameStartsAnew)
{
    const SmartRef<RenderTarget> target = makeTarget(4, 4);
    renderer().beginFrame(target.get());
    renderer().pushRenderTarget(target.get());
    renderer().clear(Renderer::ClearColor, red, 1, 0);
    const Image image = draw([&] {
        EXPECT_EQ(renderer().getRenderTargetCount(), 1u);
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(green));
    });
    EXPECT_EQ(image.at(36, 22), green);
    EXPECT_EQ(readImage(renderer(), target.get()).at(0, 0), red) << "what was asked for before is done";
    renderer().endFrame(); // and an end without a begin
    EXPECT_EQ(readImage(renderer(), nullptr).at(36, 22), green);
}

TEST_F(LifetimeTest, ABackBufferMayBeMultisampled)
{
    TearDown();
    Renderer smooth;
    ASSERT_TRUE(smooth.create({.Width = 16, .Height = 16}, false, false, 4, 0, nullptr, true));
    const SmartRef<Shader> shader = makeShader("return p.color;");
    smooth.beginFrame(nullptr);
    smooth.clear(Renderer::ClearColor | Renderer::ClearDepth, green, 1, 0);
    bindDefaults();
    shader->bind(m_declaration.get());
    const Vertex triangle[] = {{-1, 1, 0.5f, red}, {1, 1, 0.5f, red}, {-1, -0.9f, 0.5f, red}};
    const SmartRef<VertexBuffer> vertices =
        createVertexBuffer(triangle, sizeof triangle, sizeof(Vertex), D3D11_USAGE_IMMUTABLE, 0, 0);
    vertices->bind(0);
    smooth.getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    smooth.getContext()->Draw(3, 0);
    smooth.endFrame();
    const Image image = readImage(smooth, nullptr);
    EXPECT_EQ(image.at(0, 0), red);
    EXPECT_EQ(image.at(15, 15), green);
    int mixed = 0;
    for (unsigned y = 0; y < 16; ++y) {
        for (unsigned x = 0; x < 16; ++x)
            mixed += image.at8(x, y)[0] > 0 && image.at8(x, y)[0] < 255;
    }
    EXPECT_GT(mixed, 8);
    expectCleanRenderer(smooth);
}

TEST_F(LifetimeTest, AFrameThatRepeatsAllocatesAndMakesNothing)
{
    TearDown();
    Renderer::enableValidation(false); // the layer allocates on the host's thread
    Renderer quiet;
    ASSERT_TRUE(quiet.create({.Width = 37, .Height = 23}, false, false, 1, 0, nullptr, true));
    const SmartRef<RenderTarget> inner = makeTarget(8, 8);
    const SmartRef<ConstantBuffer> constants = makeConstants(red);
    const SmartRef<Query> query = createQuery();
    const SmartRef<Shader> shader =
        makeShader("return value + image.Sample(filter, p.uv);",
                   "cbuffer Values : register(b0) { float4 value; }; Texture2D image : register(t0);"
                   "SamplerState filter : register(s0);");
    const SmartRef<VertexBuffer> vertices = createVertexBuffer(
        nullptr, sizeof(Vertex) * 4, sizeof(Vertex), D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE, 0);
    const auto quad = makeQuad(red);
    constexpr unsigned draws = 3000;
    const auto drawFrame = [&] {
        quiet.beginFrame(nullptr);
        quiet.clear(Renderer::ClearColor | Renderer::ClearDepth, red, 1, 0);
        bindDefaults();
        for (int i = 0; i < 20; ++i) {
            quiet.pushRenderTarget(inner.get());
            quiet.clear(Renderer::ClearColor, green, 1, 0);
            setBlend(static_cast<BlendMode>(i % blendModeCount));
            shader->bind(m_declaration.get());
            setConstants(*constants, Vec4(i / 20.0f, 0, 0, 1));
            constants->bindPS(0);
            void* bytes = vertices->map(D3D11_MAP_WRITE_DISCARD);
            std::copy(quad.begin(), quad.end(), static_cast<Vertex*>(bytes));
            vertices->unmap();
            vertices->bind(0);
            quiet.getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
            query->begin();
            quiet.getContext()->Draw(4, 0);
            query->end();
            quiet.popRenderTarget();
            inner->getTexture()->bind(0);
            quiet.getContext()->Draw(4, 0);
            inner->getTexture()->unbind(0);
        }
        for (unsigned i = 40; i < draws; ++i) {
            setConstants(*constants, Vec4(0, i / 3000.0f, 0, 1));
            quiet.getContext()->Draw(4, 0);
        }
        quiet.endFrame();
    };
    quiet.setTimed(true);
    for (int i = 0; i < 8; ++i)
        drawFrame();
    const RendererStats before = quiet.getStats();
    const size_t allocations = countAllocations();
    for (int i = 0; i < 8; ++i)
        drawFrame();
    EXPECT_EQ(countAllocations() - allocations, 0u);
    const RendererStats after = quiet.getStats();
    EXPECT_EQ(after.pipelinesAfterFirstFrame, before.pipelinesAfterFirstFrame);
    EXPECT_EQ(after.programsAfterFirstFrame, before.programsAfterFirstFrame);
    EXPECT_EQ(after.frames, before.frames + 8);
    EXPECT_EQ(after.drawsLastFrame, draws);
    EXPECT_GT(after.gpuSecondsLastFrame, 0.0);
    EXPECT_LT(after.gpuSecondsLastFrame, 60.0);
}

} // namespace

} // namespace helvantine::test
