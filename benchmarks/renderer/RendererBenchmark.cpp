// SPDX-License-Identifier: MIT
// What drawing costs against a program that draws the same with Vulkan alone.
#include "support/BarePass.h"
#include "support/Ratio.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/RasterizerState.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/TextureSampler.h>
#include <helvantine/renderer/VertexBuffer.h>
#include <helvantine/renderer/VertexDeclaration.h>
#include <helvantine/testsupport/AllocationCount.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace helvantine::bench
{

namespace
{

constexpr uint32_t quadCount = 10000;

constexpr const char* shaderText = R"(
cbuffer Constants : register(b0) { float4x4 transform; float4 tint; };
Texture2D image : register(t0);
SamplerState imageSampler : register(s0);

struct Vertex { float4 position : POSITION; float4 color : COLOR; float2 texCoord : TEXCOORD; };
struct Pixel { float4 position : SV_Position; float4 color : COLOR; float2 texCoord : TEXCOORD; };

Pixel VS(Vertex vertex)
{
    Pixel pixel;
    pixel.position = mul(vertex.position, transform);
    pixel.color = vertex.color * tint;
    pixel.texCoord = vertex.texCoord;
    return pixel;
}

float4 PS(Pixel pixel) : SV_Target { return image.Sample(imageSampler, pixel.texCoord) * pixel.color; }
)";

/// What the program's constant buffer holds.
struct Constants
{
    float transform[16];
    float tint[4];
};

Constants makeConstants(float scale, float x, float y)
{
    return {{scale, 0, 0, x, 0, scale, 0, y, 0, 0, 1, 0, 0, 0, 0, 1}, {0.75f, 1.0f, 0.5f, 1.0f}};
}

/// Small quads in rows and columns.
Constants makeQuadConstants(uint32_t quad)
{
    const uint32_t row = quad / 100;
    const uint32_t column = quad % 100;
    return makeConstants(0.005f, -0.99f + 0.02f * static_cast<float>(column),
                         0.99f - 0.02f * static_cast<float>(row));
}

constexpr BareVertex vertices[4] = {
    {{-1, 1, 0.5f}, {1, 1, 1, 1}, {0, 0}, {}},
    {{1, 1, 0.5f}, {1, 1, 1, 1}, {1, 0}, {}},
    {{-1, -1, 0.5f}, {1, 1, 1, 1}, {0, 1}, {}},
    {{1, -1, 0.5f}, {1, 1, 1, 1}, {1, 1}, {}},
};

std::vector<uint32_t> makeTexels(uint32_t width, uint32_t height)
{
    std::vector<uint32_t> texels(size_t(width) * height);
    uint32_t value = 1;
    for (uint32_t& texel : texels) {
        value = value * 1664525u + 1013904223u;
        texel = value | 0xFF000000u;
    }
    return texels;
}

/// The renderer, drawing into one target with one program and one texture.
class RendererSide
{
public:
    RendererSide(uint32_t width, uint32_t height)
    {
        const DXGI_MODE_DESC mode{.Width = 16, .Height = 16};
        if (!m_renderer.create(mode, false, false, 1, 0, nullptr, true))
            std::exit(1);
        m_renderer.setOffline(true);
        createShader();
        createTexture(width, height);
        m_target = createRenderTarget(width, height, DXGI_FORMAT_B8G8R8A8_UNORM, 1, 0, DXGI_FORMAT_UNKNOWN);
        m_vertices =
            createVertexBuffer(vertices, sizeof vertices, sizeof vertices[0], D3D11_USAGE_IMMUTABLE, 0, 0);
        m_sampler = createTextureSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR, D3D11_TEXTURE_ADDRESS_CLAMP,
                                         D3D11_TEXTURE_ADDRESS_CLAMP, D3D11_TEXTURE_ADDRESS_CLAMP,
                                         D3D11_COMPARISON_NEVER);
        m_constants = new ConstantBuffer;
        m_constants->create(sizeof(Constants));
    }

    Renderer& renderer() { return m_renderer; }
    RenderTarget* getTarget() const { return m_target.get(); }

    void begin()
    {
        m_renderer.beginFrame(m_target.get());
        const float factor[] = {1, 1, 1, 1};
        getBlendState(BlendMode::Solid)->bind(factor, 0xFFFFFF);
        D3D11_RASTERIZER_DESC rasterizer;
        rasterizer.CullMode = D3D11_CULL_NONE;
        getRasterizerState(rasterizer)->bind();
        D3D11_DEPTH_STENCIL_DESC depth;
        depth.DepthEnable = 0;
        getDepthStencilState(depth)->bind(0);
        m_renderer.getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
    }

    void setConstants(const Constants& constants)
    {
        std::memcpy(m_constants->map(), &constants, sizeof constants);
        m_constants->unmap();
    }

    /// Binds everything, as callers do that don't know what the draw before has bound.
    void draw()
    {
        m_shader->bind(m_declaration.get());
        m_constants->bindVS(0);
        m_texture->bind(0);
        m_sampler->bind(0);
        m_vertices->bind(0);
        m_renderer.getContext()->Draw(4, 0);
    }

    void end() { m_renderer.endFrame(); }

private:
    void createShader()
    {
        ShaderFromMemoryParams params;
        params.vertexSource = params.pixelSource = shaderText;
        params.vertexEntry = "VS";
        params.pixelEntry = "PS";
        m_shader = createShaderFromMemory(params);
        if (!m_shader) {
            std::fprintf(stderr, "%s\n", params.errorText.c_str());
            std::exit(1);
        }
        const D3D11_INPUT_ELEMENT_DESC elements[] = {
            {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT},
            {"COLOR", 0, DXGI_FORMAT_R32G32B32A32_FLOAT},
            {"TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT},
            {"TEXCOORD", 1, DXGI_FORMAT_R32G32_FLOAT},
        };
        m_declaration = createVertexDeclaration(elements, 4);
    }

    void createTexture(uint32_t width, uint32_t height)
    {
        const std::vector<uint32_t> texels = makeTexels(width, height);
        D3D11_TEXTURE2D_DESC desc;
        desc.Width = width;
        desc.Height = height;
        desc.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
        desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
        const D3D11_SUBRESOURCE_DATA data{texels.data(), width * 4, 0};
        ID3D11Texture2D* texture = nullptr;
        m_renderer.getDevice()->CreateTexture2D(&desc, &data, &texture);
        m_texture = helvantine::createTexture(texture);
        texture->Release();
    }

    Renderer m_renderer;
    SmartRef<Shader> m_shader;
    SmartRef<VertexDeclaration> m_declaration;
    SmartRef<VertexBuffer> m_vertices;
    SmartRef<Texture> m_texture;
    SmartRef<TextureSampler> m_sampler;
    SmartRef<ConstantBuffer> m_constants;
    SmartRef<RenderTarget> m_target;
};

/// The same with Vulkan alone.
class BareSide
{
public:
    BareSide(const char* deviceName, uint32_t width, uint32_t height, uint32_t draws)
        : m_vulkan(deviceName), m_target(m_vulkan.createTarget(width, height, VK_FORMAT_B8G8R8A8_UNORM)),
          m_texture(m_vulkan.createTexture(width, height, VK_FORMAT_R8G8B8A8_UNORM,
                                           makeTexels(width, height).data())),
          m_pass(m_vulkan, describePass(draws))
    {
    }

    BareVulkan& vulkan() { return m_vulkan; }
    BarePass& pass() { return m_pass; }
    std::vector<uint8_t> read() { return m_vulkan.read(m_target); }

private:
    BarePassDescription describePass(uint32_t draws)
    {
        BarePassDescription description;
        description.program = buildProgram(shaderText, "VS", "PS");
        description.target = &m_target;
        description.sources = {&m_texture};
        description.samplers = {
            m_vulkan.createSampler(VK_FILTER_LINEAR, VK_SAMPLER_ADDRESS_MODE_CLAMP_TO_EDGE)};
        const Constants whole = makeConstants(1.0f, 0.0f, 0.0f);
        const auto* values = reinterpret_cast<const float*>(&whole);
        description.constants[vertexConstantBindingBase] = {values, values + sizeof whole / sizeof *values};
        std::copy_n(vertices, 4, description.vertices.begin());
        description.draws = draws;
        return description;
    }

    BareVulkan m_vulkan;
    BareImage m_target;
    BareImage m_texture;
    BarePass m_pass;
};

/// Skips the benchmark's result if the two sides have drawn different pictures.
void checkPictures(benchmark::State& state, RendererSide& side, BareSide& bare)
{
    std::vector<uint8_t> pixels;
    if (!side.renderer().readBack(side.getTarget(), pixels) || pixels != bare.read())
        state.SkipWithError("Vulkan alone draws something else");
}

/// 10,000 quads of one texture into a small target; only the recording counts.
void recordQuads(benchmark::State& state)
{
    const bool changes = state.range(0) != 0;
    RendererSide side(100, 100);
    BareSide bare(side.renderer().getDeviceName(), 100, 100, quadCount);
    VkCommandBuffer commands = VK_NULL_HANDLE;
    const auto begin = [&] {
        commands = bare.vulkan().begin();
        bare.pass().begin(commands);
        side.begin();
        side.setConstants(makeQuadConstants(0));
        side.draw(); // opens the target
        const Constants first = makeQuadConstants(0);
        std::memcpy(bare.pass().getConstants(0), &first, sizeof first);
        bare.pass().bindConstants(commands, 0);
    };
    const auto end = [&] {
        bare.pass().end(commands);
        bare.vulkan().submit();
        bare.vulkan().wait();
        side.end();
    };
    const auto drawBare = [&] {
        for (uint32_t quad = 0; quad < quadCount; ++quad) {
            if (changes) {
                const Constants constants = makeQuadConstants(quad);
                std::memcpy(bare.pass().getConstants(quad), &constants, sizeof constants);
                bare.pass().bindConstants(commands, quad);
            }
            vkCmdDraw(commands, 4, 1, 0, 0);
        }
    };
    const auto drawQuads = [&] {
        for (uint32_t quad = 0; quad < quadCount; ++quad) {
            if (changes)
                side.setConstants(makeQuadConstants(quad));
            side.draw();
        }
    };
    begin();
    for (int frame = 0; frame < 4; ++frame) { // memory of the frames in flight grows to what they need
        drawBare();
        drawQuads();
        end();
        begin();
    }
    size_t allocated = 0;
    compare(
        state, drawBare,
        [&] {
            const size_t before = test::countAllocations();
            drawQuads();
            allocated += test::countAllocations() - before;
        },
        [&] {
            end();
            begin();
        });
    drawBare();
    drawQuads();
    end();
    checkPictures(state, side, bare);
    state.counters["allocations"] = static_cast<double>(allocated);
}

/// One quad over the whole of a target and the wait for it: recording, submission, execution.
void drawTexturedQuad(benchmark::State& state)
{
    RendererSide side(1280, 720);
    BareSide bare(side.renderer().getDeviceName(), 1280, 720, 1);
    const auto drawBare = [&] {
        bare.pass().record(bare.vulkan().begin());
        bare.vulkan().submit();
        bare.vulkan().wait();
    };
    const auto drawQuad = [&] {
        side.begin();
        side.setConstants(makeConstants(1.0f, 0.0f, 0.0f));
        side.draw();
        side.end();
    };
    drawBare();
    drawQuad();
    compare(state, drawBare, drawQuad);
    checkPictures(state, side, bare);
}

BENCHMARK(recordQuads)->ArgName("changes")->Arg(1)->Arg(0)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(drawTexturedQuad)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace helvantine::bench
