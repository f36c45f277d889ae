// SPDX-License-Identifier: MIT
#include "FaultyVulkan.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/IndexBuffer.h>
#include <helvantine/renderer/Query.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/RenderUtil.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/renderer/ScreenRenderer.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/VertexBuffer.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace helvantine::test
{

namespace
{

constexpr int outOfMemory = -2; // VK_ERROR_OUT_OF_DEVICE_MEMORY
constexpr int deviceLost = -4;  // VK_ERROR_DEVICE_LOST

class FaultTest : public testing::Test
{
protected:
    void SetUp() override
    {
        // The renderer opens Vulkan's library by its name, and gets this one, which bears the same.
        void* library = dlopen(HELVANTINE_FAULTY_VULKAN, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        setFault = reinterpret_cast<decltype(setFault)>(dlsym(library, "setVulkanFault"));
        hasFailed = reinterpret_cast<decltype(hasFailed)>(dlsym(library, "hasVulkanFailed"));
        takeProblems();
        Renderer::enableValidation(true);
    }

    void TearDown() override
    {
        if (setFault)
            setFault(0, 0, false);
    }

    static bool create(Renderer& renderer)
    {
        return renderer.create({.Width = 16, .Height = 16}, false, false, 1, 0, nullptr, true);
    }

    decltype(&setVulkanFault) setFault = nullptr;
    decltype(&hasVulkanFailed) hasFailed = nullptr;
};

/// What a host makes, and uses without a look at what it got.
struct Things
{
    Things()
    {
        D3D11_TEXTURE2D_DESC desc;
        desc.Width = desc.Height = 8;
        desc.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
        desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
        const uint32_t texels[64] = {};
        const D3D11_SUBRESOURCE_DATA data{texels, 32, 0};
        ID3D11Texture2D* made = nullptr;
        g_renderer->getDevice()->CreateTexture2D(&desc, &data, &made);
        texture = createTexture(made);
        if (made)
            made->Release();
        for (const unsigned samples : {1u, 4u})
            targets[samples / 4] =
                createRenderTarget(8, 8, DXGI_FORMAT_B8G8R8A8_UNORM, samples, 0, DXGI_FORMAT_R32_TYPELESS);
        vertices = createVertexBuffer(texels, sizeof texels, 16, D3D11_USAGE_IMMUTABLE, 0, 0);
        indices = createIndexBuffer(texels, sizeof texels, D3D11_USAGE_IMMUTABLE, DXGI_FORMAT_R32_UINT);
        constants->create(16);
        query = createQuery();
    }

    SmartRef<Texture> texture;
    SmartRef<RenderTarget> targets[2];
    SmartRef<VertexBuffer> vertices;
    SmartRef<IndexBuffer> indices;
    SmartRef<ConstantBuffer> constants = new ConstantBuffer;
    SmartRef<Query> query;
};

void drawFrame(Renderer& renderer, Things& things, RenderUtil& shapes)
{
    const Vec4 white(1, 1, 1, 1);
    renderer.beginFrame(nullptr);
    renderer.clear(Renderer::ClearColor | Renderer::ClearDepth, white, 1, 0);
    if (things.query)
        things.query->begin();
    renderer.getScreenRenderer()->drawTexture(things.texture.get(), white, true, -1);
    if (things.query)
        things.query->end();
    renderer.getScreenRenderer()->drawBlur(things.texture.get(), things.targets[0].get(),
                                           things.targets[1].get(), white, true, -1);
    shapes.drawQuad({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, white);
    renderer.endFrame();
    std::vector<uint8_t> pixels;
    renderer.readBack(nullptr, pixels);
}

TEST_F(FaultTest, WhereverMemoryRunsOutNothingBreaksAndNothingLeaks)
{
    unsigned calls = 0;
    for (bool failed = true; failed; ++calls) {
        SCOPED_TRACE(calls);
        setFault(calls, outOfMemory, false);
        {
            Renderer renderer;
            if (create(renderer)) {
                RenderUtil shapes;
                Things things;
                drawFrame(renderer, things, shapes);
                drawFrame(renderer, things, shapes);
            } else {
                EXPECT_TRUE(hasFailed());
                EXPECT_EQ(g_renderer, nullptr);
            }
        }
        failed = hasFailed();
        setFault(0, 0, false);
        const std::vector<Problem> problems = takeProblems();
        EXPECT_EQ(problems.empty(), !failed) << "a failure leaves words";
        for (const Problem& problem : problems)
            EXPECT_NE(problem.module, "validation") << problem.text; // it watches for leaks, too
    }
    EXPECT_GT(calls, 100u);
}

TEST_F(FaultTest, ALostDeviceStaysLostWithoutHarm)
{
    {
        Renderer renderer;
        ASSERT_TRUE(create(renderer));
        RenderUtil shapes;
        Things things;
        drawFrame(renderer, things, shapes);
        setFault(0, deviceLost, true);
        for (int frame = 0; frame < 8; ++frame)
            drawFrame(renderer, things, shapes);
        EXPECT_EQ(takeProblems().size(), 1u);
        EXPECT_NE(getBlendState(BlendMode::Alpha), nullptr) << "a state needs no device";
        EXPECT_EQ(createRenderTarget(8, 8, DXGI_FORMAT_B8G8R8A8_UNORM, 1, 0, 0), nullptr);
        setFault(0, 0, false);
    }
    Renderer next;
    EXPECT_TRUE(create(next));
    RenderUtil shapes;
    Things things;
    drawFrame(next, things, shapes);
    EXPECT_TRUE(takeProblems().empty());
}

} // namespace

} // namespace helvantine::test
