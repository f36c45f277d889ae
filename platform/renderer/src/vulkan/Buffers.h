// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuMemory.h"
#include "vulkan/GpuObject.h"
#include "vulkan/ShadowedBytes.h"

#include <helvantine/renderer/IndexBuffer.h>
#include <helvantine/renderer/VertexBuffer.h>

namespace helvantine
{

/// Where a draw finds vertices or indices. Null buffer: nothing to draw from.
struct BufferRange
{
    VkBuffer buffer = VK_NULL_HANDLE;
    VkDeviceSize offset = 0;
    VkDeviceSize size = 0;

    bool operator==(const BufferRange&) const = default;
};

/// A buffer in device memory whose bytes never change.
class StaticBuffer
{
public:
    bool create(VulkanContext& context, const void* data, VkDeviceSize size, VkBufferUsageFlags usage,
                const char* name);
    void destroy(VulkanContext& context); ///< once the GPU is past it
    BufferRange getRange() const { return {m_buffer, 0, m_size}; }

private:
    bool upload(VulkanContext& context, const void* data);

    VkBuffer m_buffer = VK_NULL_HANDLE;
    VkDeviceSize m_size = 0;
    MemoryPiece m_memory;
};

class VulkanVertexBuffer final : public VertexBuffer, public GpuObject
{
public:
    VulkanVertexBuffer(VulkanContext& context, uint32_t stride);
    ~VulkanVertexBuffer() override;

    bool createStatic(const void* data, unsigned size);
    void createDynamic(const void* data, unsigned size); ///< data may be null: zeros

    void* map(int type) override;
    void unmap() override;
    void bind(unsigned slot) override;
    void unbind(unsigned slot) override;

    uint32_t getStride() const { return m_stride; }
    BufferRange getRange(); ///< for a draw recorded now

private:
    void releaseGpu() override { m_static.destroy(*getContext()); }

    uint32_t m_stride;
    bool m_dynamic = false;
    StaticBuffer m_static;
    ShadowedBytes m_bytes; ///< of a dynamic buffer
};

class VulkanIndexBuffer final : public IndexBuffer, public GpuObject
{
public:
    VulkanIndexBuffer(VulkanContext& context, VkIndexType type) : GpuObject(context), m_type(type) {}
    ~VulkanIndexBuffer() override;

    bool create(const void* data, unsigned size);

    void bind() override;
    void unbind() override;

    VkIndexType getType() const { return m_type; }
    uint32_t getCount() const ///< indices in it
    {
        return static_cast<uint32_t>(m_buffer.getRange().size / (m_type == VK_INDEX_TYPE_UINT16 ? 2 : 4));
    }
    BufferRange getRange() const { return m_buffer.getRange(); }

private:
    void releaseGpu() override { m_buffer.destroy(*getContext()); }

    VkIndexType m_type;
    StaticBuffer m_buffer;
};

} // namespace helvantine
