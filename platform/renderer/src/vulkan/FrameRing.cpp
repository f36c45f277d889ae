// SPDX-License-Identifier: MIT
#include "vulkan/FrameRing.h"

#include "vulkan/VulkanContext.h"

#include <algorithm>

namespace helvantine
{

FrameRing::FrameRing(VulkanContext& context) : m_context(context) {}

FrameRing::~FrameRing()
{
    const VkDevice device = m_context.device().getHandle();
    destroyGarbage(UINT64_MAX);
    for (Batch& batch : m_batches) {
        if (!batch.pool)
            continue;
        batch.uploads.destroy();
        batch.descriptors.destroy(m_context.device());
        batch.occlusion.destroy(m_context.device());
        vkDestroyQueryPool(device, batch.timestamps, nullptr);
        vkDestroyCommandPool(device, batch.pool, nullptr);
    }
    vkDestroySemaphore(device, m_timeline, nullptr);
}

bool FrameRing::create()
{
    VkSemaphoreTypeCreateInfo type{VK_STRUCTURE_TYPE_SEMAPHORE_TYPE_CREATE_INFO};
    type.semaphoreType = VK_SEMAPHORE_TYPE_TIMELINE;
    VkSemaphoreCreateInfo info{VK_STRUCTURE_TYPE_SEMAPHORE_CREATE_INFO};
    info.pNext = &type;
    VulkanDevice& device = m_context.device();
    if (!device.check(vkCreateSemaphore(device.getHandle(), &info, nullptr, &m_timeline),
                      "create a semaphore"))
        return false;
    m_garbage.reserve(256);
    for (Batch& batch : m_batches) {
        if (!createBatch(batch))
            return false;
    }
    m_batches[m_open].serial = m_serial;
    return true;
}

bool FrameRing::createBatch(Batch& batch)
{
    VulkanDevice& device = m_context.device();
    VkCommandPoolCreateInfo pool{VK_STRUCTURE_TYPE_COMMAND_POOL_CREATE_INFO};
    pool.flags = VK_COMMAND_POOL_CREATE_TRANSIENT_BIT;
    pool.queueFamilyIndex = device.getQueueFamily();
    if (!device.check(vkCreateCommandPool(device.getHandle(), &pool, nullptr, &batch.pool),
                      "create a command pool"))
        return false;
    VkCommandBufferAllocateInfo buffer{VK_STRUCTURE_TYPE_COMMAND_BUFFER_ALLOCATE_INFO};
    buffer.commandPool = batch.pool;
    buffer.level = VK_COMMAND_BUFFER_LEVEL_PRIMARY;
    buffer.commandBufferCount = 1;
    VkQueryPoolCreateInfo timestamps{VK_STRUCTURE_TYPE_QUERY_POOL_CREATE_INFO};
    timestamps.queryType = VK_QUERY_TYPE_TIMESTAMP;
    timestamps.queryCount = 2;
    return device.check(vkAllocateCommandBuffers(device.getHandle(), &buffer, &batch.commands),
                        "allocate a command buffer") &&
           device.check(vkCreateQueryPool(device.getHandle(), &timestamps, nullptr, &batch.timestamps),
                        "create the timestamps") &&
           batch.uploads.create(device) && batch.occlusion.create(device);
}

VkCommandBuffer FrameRing::commands()
{
    Batch& batch = m_batches[m_open];
    if (!batch.recording)
        begin(batch);
    return batch.commands;
}

void FrameRing::begin(Batch& batch)
{
    VulkanDevice& device = m_context.device();
    VkCommandBufferBeginInfo info{VK_STRUCTURE_TYPE_COMMAND_BUFFER_BEGIN_INFO};
    info.flags = VK_COMMAND_BUFFER_USAGE_ONE_TIME_SUBMIT_BIT;
    if (vkBeginCommandBuffer(batch.commands, &info) != VK_SUCCESS)
        device.markLost("begin recording");
    batch.recording = true;
    batch.occlusion.recordReset(batch.commands);
    batch.timed = m_timed && device.getFeatures().timestamps;
    if (batch.timed) {
        vkCmdResetQueryPool(batch.commands, batch.timestamps, 0, 2);
        vkCmdWriteTimestamp2(batch.commands, VK_PIPELINE_STAGE_2_TOP_OF_PIPE_BIT, batch.timestamps, 0);
    }
}

bool FrameRing::end(Batch& batch)
{
    if (batch.timed)
        vkCmdWriteTimestamp2(batch.commands, VK_PIPELINE_STAGE_2_ALL_COMMANDS_BIT, batch.timestamps, 1);
    batch.recording = false;
    if (vkEndCommandBuffer(batch.commands) != VK_SUCCESS)
        m_context.device().markLost("record commands");
    return !m_context.device().isLost();
}

bool FrameRing::submit(const VkSemaphoreSubmitInfo* wait, const VkSemaphoreSubmitInfo* signal)
{
    Batch& batch = m_batches[m_open];
    commands();
    if (!end(batch)) {
        abandon(batch);
        return false;
    }
    VkCommandBufferSubmitInfo commandInfo{VK_STRUCTURE_TYPE_COMMAND_BUFFER_SUBMIT_INFO};
    commandInfo.commandBuffer = batch.commands;
    VkSemaphoreSubmitInfo signals[2] = {{VK_STRUCTURE_TYPE_SEMAPHORE_SUBMIT_INFO}, {}};
    signals[0].semaphore = m_timeline;
    signals[0].value = m_serial;
    signals[0].stageMask = VK_PIPELINE_STAGE_2_ALL_COMMANDS_BIT;
    if (signal)
        signals[1] = *signal;
    VkSubmitInfo2 info{VK_STRUCTURE_TYPE_SUBMIT_INFO_2};
    info.waitSemaphoreInfoCount = wait ? 1 : 0;
    info.pWaitSemaphoreInfos = wait;
    info.commandBufferInfoCount = 1;
    info.pCommandBufferInfos = &commandInfo;
    info.signalSemaphoreInfoCount = signal ? 2 : 1;
    info.pSignalSemaphoreInfos = signals;
    VulkanDevice& device = m_context.device();
    if (vkQueueSubmit2(device.getQueue(), 1, &info, VK_NULL_HANDLE) != VK_SUCCESS) {
        device.markLost("submit commands");
        abandon(batch);
        return false;
    }
    batch.collected = false;
    openNext();
    return true;
}

void FrameRing::abandon(Batch& batch)
{
    batch.occlusion.collect(m_context.device(), true);
    batch.uploads.reset();
    batch.descriptors.reset(m_context.device());
    vkResetCommandPool(m_context.device().getHandle(), batch.pool, 0);
    batch.beginsFrame = batch.endsFrame = false;
}

void FrameRing::openNext()
{
    const uint32_t next = (m_open + 1) % batchCount;
    Batch& batch = m_batches[next];
    wait(batch.serial); // with the newest still open, so that answers are collected in order of serial
    collect(batch);
    batch.uploads.reset();
    batch.descriptors.reset(m_context.device());
    vkResetCommandPool(m_context.device().getHandle(), batch.pool, 0);
    m_open = next;
    batch.serial = ++m_serial;
    batch.beginsFrame = batch.endsFrame = false;
    batch.collected = true;
    destroyGarbage(m_completed);
}

uint64_t FrameRing::getCompleted()
{
    uint64_t value = 0;
    if (m_context.device().isLost() ||
        vkGetSemaphoreCounterValue(m_context.device().getHandle(), m_timeline, &value) != VK_SUCCESS)
        return m_completed;
    m_completed = value;
    for (uint32_t i = 1; i <= batchCount; ++i)
        collect(m_batches[(m_open + i) % batchCount]);
    return m_completed;
}

void FrameRing::wait(uint64_t serial)
{
    if (serial <= m_completed || m_context.device().isLost())
        return;
    VkSemaphoreWaitInfo info{VK_STRUCTURE_TYPE_SEMAPHORE_WAIT_INFO};
    info.semaphoreCount = 1;
    info.pSemaphores = &m_timeline;
    info.pValues = &serial;
    if (vkWaitSemaphores(m_context.device().getHandle(), &info, UINT64_MAX) != VK_SUCCESS) {
        m_context.waitForGpu(); // what follows relies on it
        m_context.device().markLost("wait for the GPU");
    }
    getCompleted();
}

void FrameRing::collect(Batch& batch)
{
    const bool lost = m_context.device().isLost();
    if (batch.collected || (batch.serial > m_completed && !lost))
        return;
    batch.collected = true;
    batch.occlusion.collect(m_context.device(), lost);
    if (batch.timed && !lost)
        addSeconds(batch);
}

void FrameRing::addSeconds(const Batch& batch)
{
    uint64_t ticks[2] = {};
    if (vkGetQueryPoolResults(m_context.device().getHandle(), batch.timestamps, 0, 2, sizeof ticks, ticks,
                              sizeof ticks[0], VK_QUERY_RESULT_64_BIT) != VK_SUCCESS)
        return;
    const double period = m_context.device().getProperties().limits.timestampPeriod;
    if (batch.beginsFrame)
        m_frameSeconds = 0.0;
    if (ticks[1] > ticks[0])
        m_frameSeconds += static_cast<double>(ticks[1] - ticks[0]) * period * 1e-9;
    if (batch.endsFrame)
        m_gpuSeconds = m_frameSeconds;
}

void FrameRing::removeQuery(const VulkanQuery& query)
{
    for (Batch& batch : m_batches)
        batch.occlusion.removeQuery(query);
}

void FrameRing::addGarbage(VkObjectType type, uint64_t handle, const MemoryPiece& memory)
{
    if (handle || memory.memory)
        m_garbage.push_back({m_serial, type, handle, memory});
}

void FrameRing::destroyGarbage(uint64_t completed)
{
    const auto end = std::find_if(m_garbage.begin(), m_garbage.end(),
                                  [completed](const Garbage& garbage) { return garbage.serial > completed; });
    std::for_each(m_garbage.begin(), end, [this](const Garbage& garbage) { destroyNow(garbage); });
    m_garbage.erase(m_garbage.begin(), end);
}

void FrameRing::destroyNow(const Garbage& garbage)
{
    const VkDevice device = m_context.device().getHandle();
    switch (garbage.type) {
    case VK_OBJECT_TYPE_BUFFER:
        vkDestroyBuffer(device, reinterpret_cast<VkBuffer>(garbage.handle), nullptr);
        break;
    case VK_OBJECT_TYPE_IMAGE:
        vkDestroyImage(device, reinterpret_cast<VkImage>(garbage.handle), nullptr);
        break;
    case VK_OBJECT_TYPE_IMAGE_VIEW:
        vkDestroyImageView(device, reinterpret_cast<VkImageView>(garbage.handle), nullptr);
        break;
    case VK_OBJECT_TYPE_SAMPLER:
        vkDestroySampler(device, reinterpret_cast<VkSampler>(garbage.handle), nullptr);
        break;
    case VK_OBJECT_TYPE_PIPELINE:
        vkDestroyPipeline(device, reinterpret_cast<VkPipeline>(garbage.handle), nullptr);
        break;
    case VK_OBJECT_TYPE_SHADER_MODULE:
        vkDestroyShaderModule(device, reinterpret_cast<VkShaderModule>(garbage.handle), nullptr);
        break;
    case VK_OBJECT_TYPE_SWAPCHAIN_KHR:
        vkDestroySwapchainKHR(device, reinterpret_cast<VkSwapchainKHR>(garbage.handle), nullptr);
        break;
    case VK_OBJECT_TYPE_SEMAPHORE:
        vkDestroySemaphore(device, reinterpret_cast<VkSemaphore>(garbage.handle), nullptr);
        break;
    default:
        m_context.memory().free(garbage.memory);
        break;
    }
}

} // namespace helvantine
