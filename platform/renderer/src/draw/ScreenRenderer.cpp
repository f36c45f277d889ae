// SPDX-License-Identifier: MIT
#include <helvantine/renderer/ScreenRenderer.h>

#include <helvantine/core/Matrix.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/RasterizerState.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/TextureSampler.h>
#include <helvantine/renderer/Viewport.h>

#include <algorithm>
#include <array>

namespace helvantine
{

namespace
{

/// The highest slots, so that what callers bound below stays.
constexpr unsigned constantSlot = 13;
constexpr unsigned textureSlot = 15;

/// One triangle that covers the viewport. The blur is a bell curve over nine pixels, two pixels wide.
constexpr const char* shaderText = R"(
cbuffer Constants : register(b13)
{
    float4 color;
    float2 blurStep;
    float mip;
};

Texture2D source : register(t15);
SamplerState sourceSampler : register(s15);

struct Varyings
{
    float4 position : SV_Position;
    float2 uv : TEXCOORD0;
};

Varyings vertexMain(uint id : SV_VertexID)
{
    Varyings result;
    result.uv = float2((id << 1) & 2, id & 2);
    result.position = float4(result.uv * float2(2, -2) + float2(-1, 1), 0, 1);
    return result;
}

float4 readSource(float2 uv)
{
    if (mip < 0)
        return source.Sample(sourceSampler, uv);
    return source.SampleLevel(sourceSampler, uv, mip);
}

float4 drawMain(Varyings input) : SV_Target
{
    return readSource(input.uv) * color;
}

float4 readPair(float2 uv, float2 offset)
{
    return readSource(uv - offset) + readSource(uv + offset);
}

float4 blurMain(Varyings input) : SV_Target
{
    float4 sum = readSource(input.uv) * 0.20416369;
    sum += readPair(input.uv, blurStep) * 0.18017382;
    sum += readPair(input.uv, blurStep * 2) * 0.12383154;
    sum += readPair(input.uv, blurStep * 3) * 0.06628225;
    sum += readPair(input.uv, blurStep * 4) * 0.02763055;
    return sum * color;
}
)";

struct ScreenConstants
{
    Vec4 color;
    float blurStepX; ///< from one pixel to the next, in texture coordinates
    float blurStepY;
    float mip; ///< below 0: the sampler's choice
    float unused;
};
static_assert(sizeof(ScreenConstants) == 32);

SmartRef<Shader> makeShader(const char* pixelEntry)
{
    ShaderFromMemoryParams params;
    params.vertexSource = shaderText;
    params.vertexEntry = "vertexMain";
    params.pixelSource = shaderText;
    params.pixelEntry = pixelEntry;
    SmartRef<Shader> shader = createShaderFromMemory(params);
    if (!shader)
        reportProblem("renderer", "the screen can't be filled: " + params.errorText);
    return shader;
}

SmartRef<RasterizerState> makeRasterizer()
{
    D3D11_RASTERIZER_DESC desc{};
    desc.CullMode = D3D11_CULL_NONE;
    desc.MultisampleEnable = 1;
    return getRasterizerState(desc);
}

SmartRef<DepthStencilState> makeDepthState()
{
    D3D11_DEPTH_STENCIL_DESC desc{};
    desc.DepthEnable = 0;
    return getDepthStencilState(desc);
}

SmartRef<TextureSampler> makeSampler(D3D11_FILTER filter)
{
    return createTextureSampler(filter, D3D11_TEXTURE_ADDRESS_CLAMP, D3D11_TEXTURE_ADDRESS_CLAMP,
                                D3D11_TEXTURE_ADDRESS_CLAMP, D3D11_COMPARISON_NEVER);
}

/// True if each pixel of the viewport is one of the texture: reading the nearest one is exact then.
bool isPixelExact(const Texture& texture, int mip, const Rect& rect)
{
    const unsigned level = static_cast<unsigned>(std::clamp(mip, 0, 31));
    return rect.width == float(std::max(1u, texture.getWidth() >> level)) &&
           rect.height == float(std::max(1u, texture.getHeight() >> level));
}

} // namespace

struct ScreenRenderer::Impl
{
    bool prepare();
    void fill(Shader& shader, Texture* texture, const ScreenConstants& constants, bool blend);
    void blur(Texture* texture, RenderTarget& target, bool across, int mip);

    bool prepared = false;
    SmartRef<Shader> drawShader;
    SmartRef<Shader> blurShader;
    SmartRef<ConstantBuffer> constants;
    SmartRef<RasterizerState> rasterizer;
    SmartRef<DepthStencilState> depth;
    SmartRef<TextureSampler> nearest;
    SmartRef<TextureSampler> smooth;
};

/// Makes what drawing needs, once. A failure isn't tried again each frame.
bool ScreenRenderer::Impl::prepare()
{
    if (!prepared) {
        prepared = true;
        constants = new ConstantBuffer;
        constants->create(sizeof(ScreenConstants));
        drawShader = makeShader("drawMain");
        blurShader = makeShader("blurMain");
        rasterizer = makeRasterizer();
        depth = makeDepthState();
        nearest = makeSampler(D3D11_FILTER_MIN_MAG_MIP_POINT);
        smooth = makeSampler(D3D11_FILTER_MIN_MAG_MIP_LINEAR);
    }
    return drawShader && blurShader && rasterizer && depth && nearest && smooth;
}

void ScreenRenderer::Impl::fill(Shader& shader, Texture* texture, const ScreenConstants& values, bool blend)
{
    const Viewport* viewport = g_renderer->getViewport();
    auto* mapped = static_cast<ScreenConstants*>(constants->map());
    if (!viewport || !mapped)
        return;
    *mapped = values;
    if (!texture)
        mapped->color = {}; // as if it read zero
    constants->unmap();

    constexpr float factor[] = {1.0f, 1.0f, 1.0f, 1.0f};
    getBlendState(blend ? BlendMode::Alpha : BlendMode::Solid)->bind(factor, 0xFFFFFF);
    rasterizer->bind();
    depth->bind(0);
    constants->bindPS(constantSlot);
    const bool exact = texture && isPixelExact(*texture, static_cast<int>(values.mip), viewport->getRect());
    (exact ? nearest : smooth)->bind(textureSlot);
    if (texture)
        texture->bind(textureSlot);
    shader.bind(nullptr);
    g_renderer->getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    constexpr std::array<Vec3, 4> wholeViewport = {Vec3(-1, 1, 0), Vec3(1, 1, 0), Vec3(1, -1, 0),
                                                   Vec3(-1, -1, 0)};
    g_renderer->declareQuad(wholeViewport, Matrix());
    g_renderer->getContext()->Draw(3, 0);
}

void ScreenRenderer::Impl::blur(Texture* texture, RenderTarget& target, bool across, int mip)
{
    ScreenConstants values{};
    values.color = {1.0f, 1.0f, 1.0f, 1.0f};
    values.mip = static_cast<float>(mip);
    values.blurStepX = across ? 1.0f / static_cast<float>(target.getWidth()) : 0.0f;
    values.blurStepY = across ? 0.0f : 1.0f / static_cast<float>(target.getHeight());
    g_renderer->pushRenderTarget(&target);
    fill(*blurShader, texture, values, false);
    g_renderer->popRenderTarget();
}

ScreenRenderer::ScreenRenderer() : m_impl(std::make_unique<Impl>()) {}

ScreenRenderer::~ScreenRenderer() = default;

void ScreenRenderer::drawTexture(Texture* texture, const Vec4& color, bool blend, int mip)
{
    if (!g_renderer || !m_impl->prepare())
        return;
    ScreenConstants values{};
    values.color = color;
    values.mip = static_cast<float>(mip);
    m_impl->fill(*m_impl->drawShader, texture, values, blend);
}

void ScreenRenderer::drawBlur(Texture* texture, RenderTarget* blurV, RenderTarget* blurH, const Vec4& color,
                              bool blend, int mip)
{
    if (!g_renderer || !blurV || !blurH || !blurV->getTexture() || !blurH->getTexture() || !m_impl->prepare())
        return;
    m_impl->blur(texture, *blurV, true, mip);
    m_impl->blur(blurV->getTexture(), *blurH, false, -1);
    drawTexture(blurH->getTexture(), color, blend, -1);
}

} // namespace helvantine
