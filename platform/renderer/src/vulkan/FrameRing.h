// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/DescriptorRing.h"
#include "vulkan/GpuMemory.h"
#include "vulkan/OcclusionPool.h"
#include "vulkan/UploadRing.h"
#include "vulkan/VulkanApi.h"

#include <array>
#include <vector>

namespace helvantine
{

class VulkanContext;
class VulkanQuery;

/// The command batches that go to the GPU one after the other, and what each of them needs.
///
/// A batch is everything recorded between two submissions: a frame, an upload at load time, a present. It
/// has a serial number, counted from 1. There is always a batch open for recording; what it needs is kept
/// until the GPU is past it, and then used for a later batch.
class FrameRing
{
public:
    explicit FrameRing(VulkanContext& context);
    ~FrameRing();
    FrameRing(const FrameRing&) = delete;
    FrameRing& operator=(const FrameRing&) = delete;

    bool create();

    VkCommandBuffer commands();                                 ///< of the open batch, ready to record
    UploadRing& uploads() { return m_batches[m_open].uploads; } ///< of the open batch
    DescriptorRing& descriptors() { return m_batches[m_open].descriptors; } ///< of the open batch
    OcclusionPool& occlusion() { return m_batches[m_open].occlusion; }      ///< of the open batch
    uint64_t getSerial() const { return m_serial; }                         ///< of the open batch
    uint64_t getCompleted(); ///< last serial that the GPU is past; collects its answers

    /// Ends the batch, submits it and opens the next; waits only if all batches are still with the GPU.
    /// wait, signal: a semaphore each, or null. False when the device is lost: the batch is dropped.
    bool submit(const VkSemaphoreSubmitInfo* wait = nullptr, const VkSemaphoreSubmitInfo* signal = nullptr);

    /// Waits until the GPU is past the batch.
    void wait(uint64_t serial);
    void waitForAll() { wait(m_serial - 1); }

    /// Destroys the object once the GPU is past the open batch. Null is allowed.
    template <typename Handle>
    void destroyLater(VkObjectType type, Handle handle)
    {
        addGarbage(type, reinterpret_cast<uint64_t>(handle), {});
    }
    void freeLater(const MemoryPiece& piece) { addGarbage(VK_OBJECT_TYPE_UNKNOWN, 0, piece); }

    void removeQuery(const VulkanQuery& query); ///< it expects no answer any more

    /// GPU time of the latest frame known to be done, over all its batches; 0 if none was measured.
    double getGpuSeconds() const { return m_gpuSeconds; }
    void beginFrame() { m_batches[m_open].beginsFrame = true; }
    void endFrame() { m_batches[m_open].endsFrame = true; }
    void setTimed(bool timed) { m_timed = timed; } ///< batches that begin from now on are measured

private:
    struct Batch
    {
        VkCommandPool pool = VK_NULL_HANDLE;
        VkCommandBuffer commands = VK_NULL_HANDLE;
        VkQueryPool timestamps = VK_NULL_HANDLE;
        UploadRing uploads;
        DescriptorRing descriptors;
        OcclusionPool occlusion;
        uint64_t serial = 0;
        bool recording = false;
        bool timed = false;
        bool beginsFrame = false;
        bool endsFrame = false;
        bool collected = true; ///< its answers have been read
    };
    struct Garbage
    {
        uint64_t serial = 0;
        VkObjectType type = VK_OBJECT_TYPE_UNKNOWN;
        uint64_t handle = 0;
        MemoryPiece memory;
    };
    static constexpr uint32_t batchCount = 4; ///< two frames, each with its present

    bool createBatch(Batch& batch);
    void begin(Batch& batch);
    bool end(Batch& batch);
    void openNext();
    void collect(Batch& batch);
    void addSeconds(const Batch& batch);
    void abandon(Batch& batch);
    void addGarbage(VkObjectType type, uint64_t handle, const MemoryPiece& memory);
    void destroyGarbage(uint64_t completed);
    void destroyNow(const Garbage& garbage);

    VulkanContext& m_context;
    std::array<Batch, batchCount> m_batches;
    uint32_t m_open = 0;
    uint64_t m_serial = 1;
    uint64_t m_completed = 0;
    VkSemaphore m_timeline = VK_NULL_HANDLE; ///< its value is the last completed serial
    std::vector<Garbage> m_garbage;          ///< in order of serial
    bool m_timed = false;
    double m_gpuSeconds = 0.0;
    double m_frameSeconds =
        0.0; ///< of the batches since a frame began, as far as their answers have been read
};

} // namespace helvantine
