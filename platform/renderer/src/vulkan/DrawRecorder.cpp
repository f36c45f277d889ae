// SPDX-License-Identifier: MIT
#include "vulkan/DrawRecorder.h"

#include "vulkan/FrameHistory.h"
#include "vulkan/PipelineBuilder.h"
#include "vulkan/SlotState.h"
#include "vulkan/StateTables.h"
#include "vulkan/TargetPass.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanRenderTarget.h"

#include <algorithm>
#include <cmath>

namespace helvantine
{

DrawRecorder::DrawRecorder(VulkanContext& context) : m_context(context) {}

DrawRecorder::~DrawRecorder() = default;

bool DrawRecorder::create()
{
    struct
    {
        float numbers[4] = {0.0f, 0.0f, 0.0f, 1.0f};
        uint32_t integers[4] = {0, 0, 0, 1};
    } const missing;
    return m_missingInput.create(m_context, &missing, sizeof missing, VK_BUFFER_USAGE_VERTEX_BUFFER_BIT,
                                 "missing vertex input");
}

void DrawRecorder::setShader(VulkanShader* shader, VulkanVertexDeclaration* declaration)
{
    if (m_shader == shader && m_declaration == declaration)
        return;
    m_shader = shader;
    m_declaration = declaration;
    m_dirty |= dirtyPipeline;
}

void DrawRecorder::setVertexBuffer(unsigned slot, VulkanVertexBuffer* buffer)
{
    if (slot >= m_vertices.size())
        return;
    const VulkanVertexBuffer* before = m_vertices[slot].get();
    if (before == buffer)
        return;
    if (!before || !buffer || before->getStride() != buffer->getStride())
        m_dirty |= dirtyPipeline;
    m_dirty |= dirtyInputs;
    m_vertices[slot] = buffer;
}

void DrawRecorder::setIndexBuffer(VulkanIndexBuffer* buffer)
{
    m_indices = buffer;
}

void DrawRecorder::setTopology(D3D11_PRIMITIVE_TOPOLOGY topology)
{
    const VkPrimitiveTopology translated = toVulkan(topology);
    if (translated == m_topology)
        return;
    if (getTopologyClass(translated) != getTopologyClass(m_topology))
        m_dirty |= dirtyPipeline;
    m_topology = translated;
    m_dirty |= dirtyTopology;
}

void DrawRecorder::setViewport(Viewport* viewport)
{
    m_viewport = viewport;
    m_dirty |= dirtyViewport;
}

void DrawRecorder::setBlend(VulkanBlendState& state, const float* factor, uint32_t mask)
{
    std::array<float, 4> wanted{1.0f, 1.0f, 1.0f, 1.0f};
    if (factor)
        std::copy_n(factor, 4, wanted.begin());
    if (wanted != m_blendFactor)
        m_dirty |= dirtyBlendFactor;
    if (m_blend != &state || mask != m_sampleMask)
        m_dirty |= dirtyPipeline;
    m_blendFactor = wanted;
    m_sampleMask = mask;
    m_blend = &state;
}

void DrawRecorder::setRasterizer(VulkanRasterizerState& state)
{
    if (m_rasterizer == &state)
        return;
    const D3D11_RASTERIZER_DESC before = m_rasterizer ? m_rasterizer->getDesc() : D3D11_RASTERIZER_DESC();
    const D3D11_RASTERIZER_DESC& after = state.getDesc();
    if (before.FillMode != after.FillMode || !before.DepthClipEnable != !after.DepthClipEnable)
        m_dirty |= dirtyPipeline;
    m_rasterizer = &state;
    m_dirty |= dirtyRasterizer;
}

void DrawRecorder::setDepthStencil(VulkanDepthStencilState& state, uint32_t reference)
{
    if (m_depthStencil == &state && m_stencilReference == reference)
        return;
    m_depthStencil = &state;
    m_stencilReference = reference;
    m_dirty |= dirtyDepthStencil;
}

void DrawRecorder::draw(uint32_t vertexCount, uint32_t startVertex)
{
    if (vertexCount == 0 || !prepare())
        return m_context.history().dropQuad();
    noteHistory();
    vkCmdDraw(m_context.commands(), vertexCount, 1, startVertex, 0);
    ++m_context.stats().drawsLastFrame;
}

void DrawRecorder::drawIndexed(uint32_t indexCount, uint32_t startIndex, int32_t baseVertex)
{
    const uint32_t available = m_indices ? m_indices->getCount() : 0;
    if (startIndex >= available || indexCount == 0 || !prepare() || !recordIndexBuffer(m_context.commands()))
        return m_context.history().dropQuad();
    noteHistory();
    indexCount = std::min(indexCount, available - startIndex);
    vkCmdDrawIndexed(m_context.commands(), indexCount, 1, startIndex, baseVertex, 0);
    ++m_context.stats().drawsLastFrame;
}

void DrawRecorder::startBatch()
{
    m_dirty = dirtyEverything;
    m_boundPipeline = VK_NULL_HANDLE;
    m_boundVertices.fill({});
    m_boundIndices = {};
}

void DrawRecorder::unbindAll()
{
    m_shader = nullptr;
    m_declaration = nullptr;
    m_blend = nullptr;
    m_rasterizer = nullptr;
    m_depthStencil = nullptr;
    m_indices = nullptr;
    m_viewport = nullptr;
    m_vertices.fill(nullptr);
    m_missingInput.destroy(m_context);
}

bool DrawRecorder::prepare()
{
    if (m_dirty == 0)
        return true;
    TargetPass& pass = m_context.pass();
    pass.queries().renewCounters();
    VulkanRenderTarget* target = pass.getTarget();
    if (!target || !m_viewport || !m_shader || !m_shader->getProgram() ||
        m_topology == VK_PRIMITIVE_TOPOLOGY_MAX_ENUM || m_context.device().isLost())
        return false;
    noteComparison(*m_shader->getProgram());
    if ((m_dirty & dirtyPipeline) && !findPipeline(*target))
        return false;
    const VulkanProgram& program = *m_shader->getProgram();
    if (pass.isOpen() && m_context.slots().needsBarriers(program))
        pass.end();
    if (!pass.begin())
        return false;
    const VkCommandBuffer commands = m_context.commands();
    if (!recordState(commands, *target) || !m_context.slots().push(commands, program) ||
        !recordVertexBuffers(commands))
        return false;
    m_dirty = 0;
    return true;
}

/// What is bound may need another pipeline.
void DrawRecorder::noteComparison(const VulkanProgram& program)
{
    if (!(m_dirty & (dirtyInputs | dirtyPipeline)))
        return;
    const uint64_t wanted =
        program.comparesTexels() ? pack(m_context.slots().findColorComparison(program)) : 0;
    if (wanted != m_comparison)
        m_dirty |= dirtyPipeline;
    m_comparison = wanted;
}

bool DrawRecorder::findPipeline(const VulkanRenderTarget& target)
{
    m_pipeline = m_context.pipelines().get(makeKey(target),
                                           {m_shader->getProgram(), m_declaration.get(), m_blend.get()});
    if (m_pipeline)
        m_dirty &= ~dirtyPipeline;
    return m_pipeline != VK_NULL_HANDLE;
}

PipelineKey DrawRecorder::makeKey(const VulkanRenderTarget& target) const
{
    const DeviceFeatures& features = m_context.device().getFeatures();
    const D3D11_RASTERIZER_DESC rasterizer = m_rasterizer ? m_rasterizer->getDesc() : D3D11_RASTERIZER_DESC();
    PipelineKey key;
    key.program = m_shader->getProgram()->getId();
    key.blend = m_blend ? m_blend->getId() : 0;
    key.comparison = m_comparison;
    key.color = target.getColorFormat();
    key.depth = target.getDepthFormat();
    key.topologyClass = getTopologyClass(m_topology);
    key.samples = target.getSamples();
    key.sampleMask = m_sampleMask & ((1u << target.getSamples()) - 1);
    key.wireframe = rasterizer.FillMode == D3D11_FILL_WIREFRAME && features.wireframe;
    key.depthClamp = !rasterizer.DepthClipEnable && features.depthClamp;
    addStrides(key);
    return key;
}

void DrawRecorder::addStrides(PipelineKey& key) const
{
    if (!m_declaration)
        return;
    key.declaration = m_declaration->getHash();
    for (uint32_t slot = 0; slot < vertexSlotCount; ++slot) {
        const VulkanVertexBuffer* buffer = m_vertices[slot].get();
        if (m_declaration->getSlots() & (1u << slot))
            key.strides[slot] =
                buffer ? static_cast<uint16_t>(buffer->getStride()) : PipelineKey::unboundSlot;
    }
}

bool DrawRecorder::recordState(VkCommandBuffer commands, const VulkanRenderTarget& target)
{
    if (m_boundPipeline != m_pipeline)
        vkCmdBindPipeline(commands, VK_PIPELINE_BIND_POINT_GRAPHICS, m_pipeline);
    m_boundPipeline = m_pipeline;
    if ((m_dirty & dirtyViewport) && !recordViewport(commands, target))
        return false;
    if (m_dirty & dirtyBlendFactor)
        vkCmdSetBlendConstants(commands, m_blendFactor.data());
    if (m_dirty & dirtyRasterizer)
        recordRasterizer(commands);
    if (m_dirty & dirtyDepthStencil)
        recordDepthStencil(commands);
    if (m_dirty & dirtyTopology)
        recordTopology(commands);
    return true;
}

/// Direct3D's y points up in clip space and Vulkan's down: the viewport stands on its head.
bool DrawRecorder::recordViewport(VkCommandBuffer commands, const VulkanRenderTarget& target)
{
    const VkPhysicalDeviceLimits& limits = m_context.device().getProperties().limits;
    const Rect& rect = m_viewport->getRect();
    const float width = std::min(rect.width, static_cast<float>(limits.maxViewportDimensions[0]));
    const float height = std::min(rect.height, static_cast<float>(limits.maxViewportDimensions[1]));
    const bool inside = rect.x >= limits.viewportBoundsRange[0] && rect.y >= limits.viewportBoundsRange[0] &&
                        rect.x + width <= limits.viewportBoundsRange[1] &&
                        rect.y + height <= limits.viewportBoundsRange[1];
    if (!(width > 0.0f && height > 0.0f && inside))
        return false;
    const auto clampDepth = [](float depth) { return std::fmin(std::fmax(depth, 0.0f), 1.0f); }; // NaN too
    const float nearDepth = clampDepth(m_viewport->getMinDepth());
    const float farDepth = clampDepth(m_viewport->getMaxDepth());
    const VkViewport viewport{rect.x, rect.y + height, width, -height, nearDepth, farDepth};
    const VkRect2D whole{{0, 0}, {target.getWidth(), target.getHeight()}};
    vkCmdSetViewport(commands, 0, 1, &viewport);
    vkCmdSetScissor(commands, 0, 1, &whole);
    return true;
}

void DrawRecorder::recordRasterizer(VkCommandBuffer commands)
{
    const D3D11_RASTERIZER_DESC desc = m_rasterizer ? m_rasterizer->getDesc() : D3D11_RASTERIZER_DESC();
    const bool biased = desc.DepthBias != 0 || desc.SlopeScaledDepthBias != 0.0f;
    const bool clamped = m_context.device().getFeatures().depthBiasClamp;
    vkCmdSetCullMode(commands, toVulkan(desc.CullMode));
    vkCmdSetFrontFace(commands,
                      desc.FrontCounterClockwise ? VK_FRONT_FACE_COUNTER_CLOCKWISE : VK_FRONT_FACE_CLOCKWISE);
    vkCmdSetDepthBiasEnable(commands, biased);
    vkCmdSetDepthBias(commands, static_cast<float>(desc.DepthBias), clamped ? desc.DepthBiasClamp : 0.0f,
                      desc.SlopeScaledDepthBias);
}

void DrawRecorder::recordDepthStencil(VkCommandBuffer commands)
{
    const D3D11_DEPTH_STENCIL_DESC desc =
        m_depthStencil ? m_depthStencil->getDesc() : D3D11_DEPTH_STENCIL_DESC();
    constexpr VkStencilFaceFlags both = VK_STENCIL_FACE_FRONT_AND_BACK;
    vkCmdSetDepthTestEnable(commands, desc.DepthEnable != 0);
    vkCmdSetDepthWriteEnable(commands, desc.DepthWriteMask == D3D11_DEPTH_WRITE_MASK_ALL);
    vkCmdSetDepthCompareOp(commands, toVulkan(desc.DepthFunc));
    vkCmdSetStencilTestEnable(commands, desc.StencilEnable != 0);
    vkCmdSetStencilCompareMask(commands, both, desc.StencilReadMask);
    vkCmdSetStencilWriteMask(commands, both, desc.StencilWriteMask);
    vkCmdSetStencilReference(commands, both, m_stencilReference & 0xFF);
    const auto setOperations = [commands](VkStencilFaceFlags face,
                                          const D3D11_DEPTH_STENCILOP_DESC& operations) {
        vkCmdSetStencilOp(commands, face, toVulkan(operations.StencilFailOp),
                          toVulkan(operations.StencilPassOp), toVulkan(operations.StencilDepthFailOp),
                          toVulkan(operations.StencilFunc));
    };
    setOperations(VK_STENCIL_FACE_FRONT_BIT, desc.FrontFace);
    setOperations(VK_STENCIL_FACE_BACK_BIT, desc.BackFace);
}

void DrawRecorder::recordTopology(VkCommandBuffer commands)
{
    const bool strip =
        m_topology == VK_PRIMITIVE_TOPOLOGY_LINE_STRIP || m_topology == VK_PRIMITIVE_TOPOLOGY_TRIANGLE_STRIP;
    vkCmdSetPrimitiveTopology(commands, m_topology);
    vkCmdSetPrimitiveRestartEnable(commands, strip);
}

bool DrawRecorder::recordVertexBuffers(VkCommandBuffer commands)
{
    if (!bindVertexBuffer(commands, missingInputBinding, m_missingInput.getRange()))
        return false;
    const uint32_t slots = m_declaration ? m_declaration->getSlots() : 0;
    for (uint32_t slot = 0; slot < vertexSlotCount; ++slot) {
        VulkanVertexBuffer* buffer = m_vertices[slot].get();
        if ((slots & (1u << slot)) && buffer && !bindVertexBuffer(commands, slot, buffer->getRange()))
            return false;
    }
    return true;
}

bool DrawRecorder::bindVertexBuffer(VkCommandBuffer commands, uint32_t binding, const BufferRange& range)
{
    if (!range.buffer)
        return false;
    if (m_boundVertices[binding] != range)
        vkCmdBindVertexBuffers2(commands, binding, 1, &range.buffer, &range.offset, &range.size, nullptr);
    m_boundVertices[binding] = range;
    return true;
}

bool DrawRecorder::recordIndexBuffer(VkCommandBuffer commands)
{
    const BufferRange range = m_indices->getRange();
    if (!range.buffer)
        return false;
    if (m_boundIndices != range)
        vkCmdBindIndexBuffer(commands, range.buffer, 0, m_indices->getType());
    m_boundIndices = range;
    return true;
}

namespace
{

/// Whether the viewport reaches over all of the target.
bool isWhole(const Rect& viewport, const VulkanRenderTarget& target)
{
    return viewport.x <= 0.0f && viewport.y <= 0.0f &&
           viewport.x + viewport.width >= static_cast<float>(target.getWidth()) &&
           viewport.y + viewport.height >= static_cast<float>(target.getHeight());
}

/// Whether every pixel that is drawn takes nothing of what was there.
bool replacesPixels(const VulkanBlendState* blend)
{
    constexpr VkColorComponentFlags all = VK_COLOR_COMPONENT_R_BIT | VK_COLOR_COMPONENT_G_BIT |
                                          VK_COLOR_COMPONENT_B_BIT | VK_COLOR_COMPONENT_A_BIT;
    return !blend || (!blend->getAttachment().blendEnable && blend->getAttachment().colorWriteMask == all &&
                      !blend->isAlphaToCoverage());
}

} // namespace

void DrawRecorder::noteHistory()
{
    FrameHistory& history = m_context.history();
    if (!history.isFollowing())
        return;
    VulkanRenderTarget& target = *m_context.pass().getTarget();
    const D3D11_RASTERIZER_DESC rasterizer = m_rasterizer ? m_rasterizer->getDesc() : D3D11_RASTERIZER_DESC();
    const D3D11_DEPTH_STENCIL_DESC depth =
        m_depthStencil ? m_depthStencil->getDesc() : D3D11_DEPTH_STENCIL_DESC();
    const uint32_t samples = (1u << target.getSamples()) - 1;
    FrameHistory::Draw draw;
    draw.testsDepth = target.getDepthHistory() && (depth.DepthEnable || depth.StencilEnable);
    draw.wholeViewport = isWhole(m_viewport->getRect(), target);
    draw.replaces = replacesPixels(m_blend.get()) && !draw.testsDepth &&
                    (m_sampleMask & samples) == samples && rasterizer.CullMode == D3D11_CULL_NONE &&
                    rasterizer.FillMode == D3D11_FILL_SOLID;
    history.noteDraw(*m_shader->getProgram(), target, draw);
}

} // namespace helvantine
