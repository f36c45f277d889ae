// SPDX-License-Identifier: MIT
#include "draw/ShapeDrawer.h"

#include "vulkan/GpuObject.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace helvantine
{

namespace
{

/// The highest slot, so that what callers bound below stays.
constexpr unsigned constantSlot = 13;

/// A line becomes a strip that is as wide as it is thick, measured along the axis that it runs less along: one
/// pixel of thickness covers one pixel a row or column. Half a pixel is taken from its end and put to its start,
/// so that lines which go on from each other cover no pixel twice and leave none out.
constexpr const char* shaderText = R"(
cbuffer Constants : register(b13)
{
    float4x4 transform;
    float4 color;
    float2 viewportSize;
    float thickness;
};

static const float smallestW = 1e-4;

float4 bringToFront(float4 behind, float4 front)
{
    return lerp(behind, front, (smallestW - behind.w) / (front.w - behind.w));
}

float4 placeOnLine(float4 a, float4 b, float2 corner)
{
    if (a.w < smallestW && b.w < smallestW)
        return float4(2, 2, 2, 1);
    if (a.w < smallestW)
        a = bringToFront(a, b);
    else if (b.w < smallestW)
        b = bringToFront(b, a);
    float2 run = (b.xy / b.w - a.xy / a.w) * viewportSize;
    float longer = max(abs(run.x), abs(run.y));
    float2 along = longer > 0 ? run / longer : float2(0, 0);
    float2 across = abs(run.x) < abs(run.y) ? float2(1, 0) : float2(0, 1);
    float2 pixels = across * (corner.y * thickness * 0.5) - along * 0.5;
    float4 place = corner.x > 0.5 ? b : a;
    place.xy += pixels * 2 / viewportSize * place.w;
    return place;
}

float4 vertexMain(float3 begin : POSITION, float3 end : TEXCOORD0, float2 corner : TEXCOORD1) : SV_Position
{
    float4 a = mul(float4(begin, 1), transform);
    if (corner.y == 0)
        return a;
    return placeOnLine(a, mul(float4(end, 1), transform), corner);
}

float4 pixelMain() : SV_Target
{
    return color;
}
)";

struct ShapeConstants
{
    Matrix transform; ///< transposed
    Vec4 color;
    float viewportWidth;
    float viewportHeight;
    float thickness;
    float unused;
};
static_assert(sizeof(ShapeConstants) == 96);

SmartRef<RasterizerState> makeRasterizer(bool clipDepth)
{
    D3D11_RASTERIZER_DESC desc{};
    desc.CullMode = D3D11_CULL_NONE;
    desc.DepthClipEnable = clipDepth;
    desc.MultisampleEnable = 1;
    return getRasterizerState(desc);
}

SmartRef<DepthStencilState> makeDepthState(bool test)
{
    D3D11_DEPTH_STENCIL_DESC desc{};
    desc.DepthEnable = test;
    desc.DepthFunc = D3D11_COMPARISON_LESS_EQUAL;
    return getDepthStencilState(desc);
}

} // namespace

bool ShapeDrawer::makeProgram()
{
    ShaderFromMemoryParams params;
    params.vertexSource = shaderText;
    params.vertexEntry = "vertexMain";
    params.pixelSource = shaderText;
    params.pixelEntry = "pixelMain";
    m_shader = createShaderFromMemory(params);
    if (!m_shader) {
        reportProblem("renderer", "shapes can't be drawn: " + params.errorText);
        return false;
    }
    const D3D11_INPUT_ELEMENT_DESC elements[] = {
        {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, 0, D3D11_INPUT_PER_VERTEX_DATA, 0},
        {"TEXCOORD", 0, DXGI_FORMAT_R32G32B32_FLOAT, 0, 12, D3D11_INPUT_PER_VERTEX_DATA, 0},
        {"TEXCOORD", 1, DXGI_FORMAT_R32G32_FLOAT, 0, 24, D3D11_INPUT_PER_VERTEX_DATA, 0},
    };
    m_declaration = createVertexDeclaration(elements, static_cast<unsigned>(std::size(elements)));
    return m_declaration.get() != nullptr;
}

bool ShapeDrawer::makeStates()
{
    m_constants = new ConstantBuffer;
    for (const bool test : {false, true}) {
        m_rasterizer[test] =
            makeRasterizer(test); // what draws over everything isn't cut off at the near plane
        m_depth[test] = makeDepthState(test);
        if (!m_rasterizer[test] || !m_depth[test])
            return false;
    }
    return m_constants->create(sizeof(ShapeConstants));
}

/// True if everything but a large enough vertex buffer is there for the current renderer.
bool ShapeDrawer::prepare()
{
    VulkanContext* current = VulkanContext::getCurrent();
    if (!current)
        return false;
    const auto* known = dynamic_cast<const GpuObject*>(m_shader.get());
    if (known && known->getContext() == current)
        return true;
    m_buffer = nullptr;
    m_capacity = 0;
    if (makeStates() && makeProgram())
        return true;
    m_shader = nullptr;
    return false;
}

bool ShapeDrawer::fillBuffer(std::span<const ShapeVertex> vertices)
{
    constexpr size_t firstCapacity = 256;
    if (vertices.size() > m_capacity) {
        const size_t capacity = std::bit_ceil(std::max(vertices.size(), firstCapacity));
        m_buffer = createVertexBuffer(nullptr, static_cast<unsigned>(capacity * sizeof(ShapeVertex)),
                                      sizeof(ShapeVertex), D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE, 0);
        m_capacity = m_buffer ? capacity : 0;
    }
    void* bytes = m_buffer ? m_buffer->map(D3D11_MAP_WRITE_DISCARD) : nullptr;
    if (!bytes)
        return false;
    std::memcpy(bytes, vertices.data(), vertices.size_bytes());
    m_buffer->unmap();
    return true;
}

bool ShapeDrawer::fillConstants(const Matrix& transform, const Rect& rect, const ShapeStyle& style)
{
    auto* constants = static_cast<ShapeConstants*>(m_constants->map());
    if (!constants)
        return false;
    *constants = {MatrixTranspose(transform), style.color, rect.width, rect.height, style.thickness, 0.0f};
    m_constants->unmap();
    return true;
}

Viewport* ShapeDrawer::getTargetViewport()
{
    const RenderTarget& target = *g_renderer->getRenderTarget();
    const auto width = static_cast<float>(target.getWidth());
    const auto height = static_cast<float>(target.getHeight());
    if (!m_targetViewport || m_targetViewport->getRect().width != width ||
        m_targetViewport->getRect().height != height)
        m_targetViewport = new Viewport(0.0f, 0.0f, width, height);
    return m_targetViewport.get();
}

void ShapeDrawer::draw(const ShapeVertices& shapes, const Matrix& transform, Viewport* viewport,
                       const ShapeStyle& style)
{
    if (shapes.get().empty() || !prepare() || !g_renderer->getRenderTarget())
        return;
    Viewport* const area = viewport ? viewport : getTargetViewport();
    if (!(area->getRect().width > 0.0f && area->getRect().height > 0.0f))
        return;
    if (!fillBuffer(shapes.get()) || !fillConstants(transform, area->getRect(), style))
        return;

    constexpr float factor[] = {1.0f, 1.0f, 1.0f, 1.0f};
    getBlendState(style.blend ? BlendMode::Alpha : BlendMode::Solid)->bind(factor, 0xFFFFFF);
    m_rasterizer[style.depthTest]->bind();
    m_depth[style.depthTest]->bind(0);
    m_constants->bindVS(constantSlot);
    m_constants->bindPS(constantSlot);
    m_buffer->bind(0);
    m_shader->bind(m_declaration.get());

    g_renderer->pushViewport(area);
    g_renderer->getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    g_renderer->getContext()->Draw(static_cast<uint32_t>(shapes.get().size()), 0);
    g_renderer->popViewport();
}

} // namespace helvantine
