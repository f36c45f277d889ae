// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"
#include "vulkan/VulkanDevice.h"
#include "vulkan/VulkanImage.h"
#include "vulkan/VulkanInstance.h"

#include <helvantine/renderer/Renderer.h>

#include <memory>

namespace helvantine
{

class DrawRecorder;
class FrameHistory;
class FrameRing;
class GpuMemory;
class GpuObject;
class PipelineCache;
class Presenter;
class SamplerCache;
class SlotState;
class StateCache;
class TargetPass;

/// Everything of one renderer that its objects reach: the device, its memory, the commands being recorded
/// and the state that draws are made from.
///
/// Objects are GpuObjects and ask their own context; only what makes objects asks for the current one.
class VulkanContext
{
public:
    VulkanContext();
    ~VulkanContext(); ///< waits for the GPU and takes every object's resources away
    VulkanContext(const VulkanContext&) = delete;
    VulkanContext& operator=(const VulkanContext&) = delete;

    /// presenter: null off-screen. False with the reason in the report.
    bool create(Presenter* presenter, bool validation);

    /// The context of g_renderer; null without one or when its device is lost.
    static VulkanContext* getCurrent();
    /// For what needs no device: the context of g_renderer, lost or not; null without one.
    static VulkanContext* getCurrentOrLost();

    VulkanInstance& instance() { return m_instance; }
    VulkanDevice& device() { return m_device; }
    GpuMemory& memory() { return *m_memory; }
    FrameRing& frames() { return *m_frames; }
    ImageBarriers& barriers() { return m_barriers; }
    TargetPass& pass() { return *m_pass; }
    SlotState& slots() { return *m_slots; }
    DrawRecorder& draws() { return *m_draws; }
    FrameHistory& history() { return *m_history; }
    PipelineCache& pipelines() { return *m_pipelines; }
    StateCache& states() { return *m_states; }
    SamplerCache& samplers() { return *m_samplers; }
    RendererStats& stats() { return m_stats; }
    VkCommandBuffer commands(); ///< of the open batch
    VkCommandBuffer
    commandsOutsideRendering(); ///< the same, with rendering ended so that copies can be recorded

    bool isOffline() const { return m_offline; }
    void setOffline(bool offline) { m_offline = offline; }

    /// Ends rendering and hands the open batch to the GPU. wait, signal: a binary semaphore each, or null.
    bool submit(const VkSemaphoreSubmitInfo* wait = nullptr, const VkSemaphoreSubmitInfo* signal = nullptr);
    void submitAndWait();
    /// Submits early once many uploads wait, so that loading a lot before a frame doesn't keep it all twice.
    void limitUploads();
    /// For everything submitted. Also before create has succeeded, and when the device counts as lost: the GPU may
    /// still be at work on what was submitted before.
    void waitForGpu();

private:
    friend class GpuObject;

    void releaseObjects();

    VulkanInstance m_instance;
    VulkanDevice m_device;
    ImageBarriers m_barriers;
    std::unique_ptr<GpuMemory> m_memory;
    std::unique_ptr<FrameRing> m_frames;
    std::unique_ptr<SamplerCache> m_samplers;
    std::unique_ptr<PipelineCache> m_pipelines;
    std::unique_ptr<SlotState> m_slots;
    std::unique_ptr<TargetPass> m_pass;
    std::unique_ptr<DrawRecorder> m_draws;
    std::unique_ptr<FrameHistory> m_history;
    std::unique_ptr<StateCache> m_states;
    RendererStats m_stats;
    GpuObject* m_firstObject = nullptr;
    bool m_offline = false;
};

} // namespace helvantine
