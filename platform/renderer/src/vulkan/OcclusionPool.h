// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <vector>

namespace helvantine
{

class VulkanDevice;
class VulkanQuery;

/// The occlusion counters of one batch.
///
/// A counter runs within one stretch of rendering and for one set of begun queries; a query sums the
/// counters that ran between its begin and its end.
class OcclusionPool
{
public:
    bool create(VulkanDevice& device);
    void destroy(VulkanDevice& device);

    /// Makes the counters of the batch before usable again; at the start of a batch, outside rendering.
    void recordReset(VkCommandBuffer commands);

    /// Starts the next counter. False when there is none left or one is running: nothing is counted.
    bool start(VkCommandBuffer commands, bool precise);
    void stop(VkCommandBuffer commands);
    bool isRunning() const { return m_running; }
    uint32_t getCount() const { return m_count; } ///< counters started so far
    bool isHalfUsed() const { return m_count >= capacity / 2; }

    /// query counts first up to, not including, end. last: the query is complete with them.
    void addPart(VulkanQuery& query, uint32_t generation, uint32_t first, uint32_t end, bool last);
    /// A query that is deleted expects no answer any more.
    void removeQuery(const VulkanQuery& query);

    /// Hands every part its sum and starts anew. The GPU must be past the batch; failed: nobody gets an
    /// answer.
    void collect(VulkanDevice& device, bool failed);

private:
    struct Part
    {
        VulkanQuery* query = nullptr;
        uint32_t generation = 0;
        uint32_t first = 0;
        uint32_t end = 0;
        bool last = false;
    };
    static constexpr uint32_t capacity = 1024; ///< counters of a batch

    VkQueryPool m_pool = VK_NULL_HANDLE;
    uint32_t m_count = 0;
    uint32_t m_used = capacity; ///< counters to reset; new ones count as used
    bool m_running = false;
    std::vector<Part> m_parts;
    std::vector<uint64_t> m_results;
};

} // namespace helvantine
