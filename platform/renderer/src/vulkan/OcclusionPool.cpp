// SPDX-License-Identifier: MIT
#include "vulkan/OcclusionPool.h"

#include "vulkan/VulkanDevice.h"
#include "vulkan/VulkanQuery.h"

#include <numeric>

namespace helvantine
{

bool OcclusionPool::create(VulkanDevice& device)
{
    VkQueryPoolCreateInfo info{VK_STRUCTURE_TYPE_QUERY_POOL_CREATE_INFO};
    info.queryType = VK_QUERY_TYPE_OCCLUSION;
    info.queryCount = capacity;
    m_parts.reserve(64);
    m_results.resize(capacity);
    return device.check(vkCreateQueryPool(device.getHandle(), &info, nullptr, &m_pool),
                        "create the occlusion counters");
}

void OcclusionPool::destroy(VulkanDevice& device)
{
    vkDestroyQueryPool(device.getHandle(), m_pool, nullptr);
    m_pool = VK_NULL_HANDLE;
}

void OcclusionPool::recordReset(VkCommandBuffer commands)
{
    if (m_used > 0)
        vkCmdResetQueryPool(commands, m_pool, 0, m_used);
    m_used = 0;
}

bool OcclusionPool::start(VkCommandBuffer commands, bool precise)
{
    if (m_running || m_count == capacity)
        return false;
    vkCmdBeginQuery(commands, m_pool, m_count, precise ? VK_QUERY_CONTROL_PRECISE_BIT : 0);
    m_used = ++m_count;
    m_running = true;
    return true;
}

void OcclusionPool::stop(VkCommandBuffer commands)
{
    if (!m_running)
        return;
    vkCmdEndQuery(commands, m_pool, m_count - 1);
    m_running = false;
}

void OcclusionPool::addPart(VulkanQuery& query, uint32_t generation, uint32_t first, uint32_t end, bool last)
{
    m_parts.push_back({&query, generation, first, end, last});
}

void OcclusionPool::removeQuery(const VulkanQuery& query)
{
    std::erase_if(m_parts, [&query](const Part& part) { return part.query == &query; });
}

void OcclusionPool::collect(VulkanDevice& device, bool failed)
{
    if (m_count > 0 && !failed) {
        failed =
            vkGetQueryPoolResults(device.getHandle(), m_pool, 0, m_count, m_count * sizeof(uint64_t),
                                  m_results.data(), sizeof(uint64_t), VK_QUERY_RESULT_64_BIT) != VK_SUCCESS;
    }
    for (const Part& part : m_parts) {
        const auto first = m_results.begin();
        const uint64_t samples =
            failed ? 0 : std::accumulate(first + part.first, first + part.end, uint64_t(0));
        part.query->addSamples(part.generation, samples, part.last && !failed);
    }
    m_parts.clear();
    m_count = 0;
}

} // namespace helvantine
