// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/Buffers.h"
#include "vulkan/PipelineKey.h"
#include "vulkan/States.h"
#include "vulkan/VulkanShader.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/Viewport.h>

#include <array>

namespace helvantine
{

class VulkanRenderTarget;

/// What draws are made from, the slots of shaders aside, and the recording of draws.
///
/// Keeps alive what is bound. Only what changed since the last draw of the batch is recorded.
class DrawRecorder
{
public:
    explicit DrawRecorder(VulkanContext& context);
    ~DrawRecorder();

    bool create(); ///< makes the buffer that inputs without an element read

    // Null unbinds. A slot out of range does nothing.
    void setShader(VulkanShader* shader, VulkanVertexDeclaration* declaration);
    void setVertexBuffer(unsigned slot, VulkanVertexBuffer* buffer);
    void setIndexBuffer(VulkanIndexBuffer* buffer);
    void setTopology(D3D11_PRIMITIVE_TOPOLOGY topology);
    void setViewport(Viewport* viewport);

    void setBlend(VulkanBlendState& state, const float* factor, uint32_t mask); ///< factor null: ones
    void setRasterizer(VulkanRasterizerState& state);
    void setDepthStencil(VulkanDepthStencilState& state, uint32_t reference);

    void draw(uint32_t vertexCount, uint32_t startVertex);
    void drawIndexed(uint32_t indexCount, uint32_t startIndex, int32_t baseVertex);

    void targetChanged() { m_dirty |= dirtyPipeline | dirtyViewport; }
    void renderingClosed() { m_dirty |= dirtyRendering; }
    void inputsChanged() { m_dirty |= dirtyInputs; } ///< what slots hold, or the bytes of a buffer
    void startBatch();                               ///< nothing has been recorded in the new batch
    void unbindAll();

private:
    enum Dirty : uint32_t
    {
        dirtyPipeline = 1,
        dirtyViewport = 2,
        dirtyBlendFactor = 4,
        dirtyRasterizer = 8,
        dirtyDepthStencil = 16,
        dirtyTopology = 32,
        dirtyInputs = 64,
        dirtyRendering = 128,
        dirtyEverything = 255
    };

    /// Makes the next draw possible and records what it needs; false if nothing can be drawn.
    bool prepare();
    void noteComparison(const VulkanProgram& program);
    bool findPipeline(const VulkanRenderTarget& target);
    PipelineKey makeKey(const VulkanRenderTarget& target) const;
    void addStrides(PipelineKey& key) const;
    bool recordState(VkCommandBuffer commands, const VulkanRenderTarget& target);
    bool recordViewport(VkCommandBuffer commands, const VulkanRenderTarget& target);
    void recordRasterizer(VkCommandBuffer commands);
    void recordDepthStencil(VkCommandBuffer commands);
    void recordTopology(VkCommandBuffer commands);
    bool recordVertexBuffers(VkCommandBuffer commands);
    bool bindVertexBuffer(VkCommandBuffer commands, uint32_t binding, const BufferRange& range);
    bool recordIndexBuffer(VkCommandBuffer commands);
    void noteHistory(); ///< of a draw that is being recorded

    VulkanContext& m_context;
    SmartRef<VulkanShader> m_shader;
    SmartRef<VulkanVertexDeclaration> m_declaration;
    SmartRef<VulkanBlendState> m_blend;
    SmartRef<VulkanRasterizerState> m_rasterizer;
    SmartRef<VulkanDepthStencilState> m_depthStencil;
    SmartRef<VulkanIndexBuffer> m_indices;
    SmartRef<Viewport> m_viewport;
    std::array<SmartRef<VulkanVertexBuffer>, vertexSlotCount> m_vertices;
    std::array<float, 4> m_blendFactor{1.0f, 1.0f, 1.0f, 1.0f};
    uint32_t m_sampleMask = UINT32_MAX;
    uint32_t m_stencilReference = 0;
    VkPrimitiveTopology m_topology = VK_PRIMITIVE_TOPOLOGY_MAX_ENUM; ///< the same: none

    StaticBuffer m_missingInput;
    uint64_t m_comparison = 0; ///< packed ColorComparison of the last draw
    uint32_t m_dirty = dirtyEverything;
    VkPipeline m_pipeline = VK_NULL_HANDLE;      ///< of the current state; null if it can't be made
    VkPipeline m_boundPipeline = VK_NULL_HANDLE; ///< in the open batch
    std::array<BufferRange, vertexSlotCount + 1> m_boundVertices{};
    BufferRange m_boundIndices;
};

} // namespace helvantine
