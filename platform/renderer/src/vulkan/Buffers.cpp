// SPDX-License-Identifier: MIT
#include "vulkan/Buffers.h"

#include "vulkan/DrawRecorder.h"
#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <cstring>
#include <memory>

namespace helvantine
{

namespace
{

/// The largest buffer that can be made; what asks for more is mistaken.
constexpr unsigned largestBuffer = 1u << 30;

} // namespace

bool StaticBuffer::create(VulkanContext& context, const void* data, VkDeviceSize size,
                          VkBufferUsageFlags usage, const char* name)
{
    VulkanDevice& device = context.device();
    VkBufferCreateInfo info{VK_STRUCTURE_TYPE_BUFFER_CREATE_INFO};
    info.size = size;
    info.usage = usage | VK_BUFFER_USAGE_TRANSFER_DST_BIT;
    VkMemoryRequirements needs{};
    if (!device.check(vkCreateBuffer(device.getHandle(), &info, nullptr, &m_buffer), "create a buffer"))
        return false;
    m_size = size;
    vkGetBufferMemoryRequirements(device.getHandle(), m_buffer, &needs);
    device.setName(VK_OBJECT_TYPE_BUFFER, m_buffer, name);
    return context.memory().allocate(needs, m_memory) &&
           device.check(vkBindBufferMemory(device.getHandle(), m_buffer, m_memory.memory, m_memory.offset),
                        "bind a buffer's memory") &&
           upload(context, data);
}

bool StaticBuffer::upload(VulkanContext& context, const void* data)
{
    const UploadSlice slice = context.frames().uploads().allocate(m_size, 16);
    if (!slice.data)
        return false;
    std::memcpy(slice.data, data, m_size);
    const VkCommandBuffer commands = context.commandsOutsideRendering();
    const VkBufferCopy region{slice.offset, 0, m_size};
    vkCmdCopyBuffer(commands, slice.buffer, m_buffer, 1, &region);
    VkMemoryBarrier2 barrier{VK_STRUCTURE_TYPE_MEMORY_BARRIER_2};
    barrier.srcStageMask = VK_PIPELINE_STAGE_2_COPY_BIT;
    barrier.srcAccessMask = VK_ACCESS_2_TRANSFER_WRITE_BIT;
    barrier.dstStageMask = VK_PIPELINE_STAGE_2_VERTEX_INPUT_BIT;
    barrier.dstAccessMask = VK_ACCESS_2_VERTEX_ATTRIBUTE_READ_BIT | VK_ACCESS_2_INDEX_READ_BIT;
    VkDependencyInfo info{VK_STRUCTURE_TYPE_DEPENDENCY_INFO};
    info.memoryBarrierCount = 1;
    info.pMemoryBarriers = &barrier;
    vkCmdPipelineBarrier2(commands, &info);
    context.limitUploads();
    return true;
}

void StaticBuffer::destroy(VulkanContext& context)
{
    context.frames().destroyLater(VK_OBJECT_TYPE_BUFFER, m_buffer);
    context.frames().freeLater(m_memory);
    m_buffer = VK_NULL_HANDLE;
    m_memory = {};
}

VulkanVertexBuffer::VulkanVertexBuffer(VulkanContext& context, uint32_t stride)
    : GpuObject(context), m_stride(stride)
{
}

VulkanVertexBuffer::~VulkanVertexBuffer()
{
    if (getContext())
        releaseGpu();
}

bool VulkanVertexBuffer::createStatic(const void* data, unsigned size)
{
    return m_static.create(*getContext(), data, size, VK_BUFFER_USAGE_VERTEX_BUFFER_BIT, "vertices");
}

void VulkanVertexBuffer::createDynamic(const void* data, unsigned size)
{
    m_dynamic = true;
    m_bytes.resize(size);
    if (data)
        std::memcpy(m_bytes.getData(), data, size);
}

void* VulkanVertexBuffer::map(int type)
{
    const bool writes = type == D3D11_MAP_WRITE || type == D3D11_MAP_READ_WRITE ||
                        type == D3D11_MAP_WRITE_DISCARD || type == D3D11_MAP_WRITE_NO_OVERWRITE;
    return m_dynamic && writes && getContext() ? m_bytes.getData() : nullptr;
}

void VulkanVertexBuffer::unmap()
{
    if (m_dynamic && getContext())
        m_bytes.markChanged(*getContext());
}

void VulkanVertexBuffer::bind(unsigned slot)
{
    if (getContext())
        getContext()->draws().setVertexBuffer(slot, this);
}

void VulkanVertexBuffer::unbind(unsigned slot)
{
    if (getContext())
        getContext()->draws().setVertexBuffer(slot, nullptr);
}

BufferRange VulkanVertexBuffer::getRange()
{
    if (!getContext() || !m_dynamic)
        return m_static.getRange();
    const UploadSlice& slice = m_bytes.getSlice(*getContext());
    return {slice.buffer, slice.offset, m_bytes.getSize()};
}

VertexBuffer* createVertexBuffer(const void* data, unsigned size, unsigned stride, unsigned usage,
                                 unsigned cpuAccess, unsigned misc)
{
    constexpr unsigned largestStride = 2048;
    VulkanContext* context = VulkanContext::getCurrent();
    const bool dynamic = usage == D3D11_USAGE_DYNAMIC && (cpuAccess & D3D11_CPU_ACCESS_WRITE);
    const bool known = usage == D3D11_USAGE_DEFAULT || usage == D3D11_USAGE_IMMUTABLE || dynamic;
    if (!context)
        return nullptr;
    if (!known || size == 0 || size > largestBuffer || stride > largestStride || misc != 0 ||
        (!dynamic && !data)) {
        reportProblem("renderer",
                      formatString("no vertex buffer of %u bytes, stride %u, usage %u, access %u, "
                                   "misc %u, with%s data: at most %u bytes, stride %u",
                                   size, stride, usage, cpuAccess, misc, data ? "" : "out", largestBuffer,
                                   largestStride));
        return nullptr;
    }
    auto buffer = std::make_unique<VulkanVertexBuffer>(*context, stride);
    if (dynamic)
        buffer->createDynamic(data, size);
    else if (!buffer->createStatic(data, size))
        return nullptr;
    return buffer.release();
}

VulkanIndexBuffer::~VulkanIndexBuffer()
{
    if (getContext())
        releaseGpu();
}

bool VulkanIndexBuffer::create(const void* data, unsigned size)
{
    return m_buffer.create(*getContext(), data, size, VK_BUFFER_USAGE_INDEX_BUFFER_BIT, "indices");
}

void VulkanIndexBuffer::bind()
{
    if (getContext())
        getContext()->draws().setIndexBuffer(this);
}

void VulkanIndexBuffer::unbind()
{
    if (getContext())
        getContext()->draws().setIndexBuffer(nullptr);
}

IndexBuffer* createIndexBuffer(const void* data, unsigned size, unsigned usage, unsigned format)
{
    VulkanContext* context = VulkanContext::getCurrent();
    const bool known = format == DXGI_FORMAT_R32_UINT || format == DXGI_FORMAT_R16_UINT;
    if (!context)
        return nullptr;
    if (!data || size == 0 || size > largestBuffer || usage > D3D11_USAGE_DYNAMIC || !known) {
        reportProblem(
            "renderer",
            formatString("no index buffer of %u bytes, usage %u, format %u, with%s data: at most %u bytes",
                         size, usage, format, data ? "" : "out", largestBuffer));
        return nullptr;
    }
    auto buffer = std::make_unique<VulkanIndexBuffer>(
        *context, format == DXGI_FORMAT_R32_UINT ? VK_INDEX_TYPE_UINT32 : VK_INDEX_TYPE_UINT16);
    return buffer->create(data, size) ? buffer.release() : nullptr;
}

} // namespace helvantine
