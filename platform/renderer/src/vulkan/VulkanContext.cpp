// SPDX-License-Identifier: MIT
#include "vulkan/VulkanContext.h"

#include "vulkan/DrawRecorder.h"
#include "vulkan/FrameHistory.h"
#include "vulkan/FrameRing.h"
#include "vulkan/GpuMemory.h"
#include "vulkan/GpuObject.h"
#include "vulkan/PipelineCache.h"
#include "vulkan/Presenter.h"
#include "vulkan/RendererImpl.h"
#include "vulkan/SlotState.h"
#include "vulkan/States.h"
#include "vulkan/TargetPass.h"
#include "vulkan/VulkanSampler.h"

namespace helvantine
{

VulkanContext::VulkanContext() = default;

VulkanContext::~VulkanContext()
{
    if (!m_states)
        return;
    m_frames->waitForAll();
    waitForGpu();
    m_draws->unbindAll();
    m_slots->unbindAll();
    m_states->clear();
    releaseObjects();
    m_pipelines->save();
}

bool VulkanContext::create(Presenter* presenter, bool validation)
{
    std::vector<const char*> extensions;
    if (presenter && !presenter->getInstanceExtensions(extensions))
        return false;
    if (!m_instance.create(extensions, validation))
        return false;
    VkSurfaceKHR surface = VK_NULL_HANDLE;
    if (presenter && !(surface = presenter->createSurface(m_instance.getHandle())))
        return false;
    if (!m_device.create(m_instance, surface))
        return false;
    m_memory = std::make_unique<GpuMemory>(m_device);
    m_frames = std::make_unique<FrameRing>(*this);
    m_samplers = std::make_unique<SamplerCache>(m_device);
    m_pipelines = std::make_unique<PipelineCache>(*this);
    m_slots = std::make_unique<SlotState>(*this);
    m_pass = std::make_unique<TargetPass>(*this);
    m_draws = std::make_unique<DrawRecorder>(*this);
    m_history = std::make_unique<FrameHistory>(*this);
    m_states = std::make_unique<StateCache>();
    return m_frames->create() && m_pipelines->create() && m_slots->create() && m_draws->create();
}

VulkanContext* VulkanContext::getCurrent()
{
    VulkanContext* context = getCurrentOrLost();
    return context && !context->m_device.isLost() ? context : nullptr;
}

VulkanContext* VulkanContext::getCurrentOrLost()
{
    return g_renderer ? g_renderer->impl().context.get() : nullptr;
}

VkCommandBuffer VulkanContext::commands()
{
    return m_frames->commands();
}

VkCommandBuffer VulkanContext::commandsOutsideRendering()
{
    m_pass->end();
    return m_frames->commands();
}

bool VulkanContext::submit(const VkSemaphoreSubmitInfo* wait, const VkSemaphoreSubmitInfo* signal)
{
    m_pass->finishBatch();
    const bool submitted = m_frames->submit(wait, signal);
    m_slots->startBatch();
    m_draws->startBatch();
    return submitted;
}

void VulkanContext::submitAndWait()
{
    submit();
    m_frames->waitForAll();
}

void VulkanContext::limitUploads()
{
    constexpr VkDeviceSize largestBacklog = VkDeviceSize(64) << 20;
    if (m_frames->uploads().getUsedBytes() > largestBacklog)
        submit();
}

void VulkanContext::waitForGpu()
{
    if (m_device.getHandle())
        vkDeviceWaitIdle(m_device.getHandle());
}

void VulkanContext::releaseObjects()
{
    while (GpuObject* object = m_firstObject) {
        object->releaseGpu();
        m_firstObject = object->m_next;
        object->m_context = nullptr;
        object->m_previous = object->m_next = nullptr;
    }
}

} // namespace helvantine
