// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/VulkanApi.h"

#include <vector>

namespace helvantine
{

class VulkanDevice;

/// The descriptor sets of one batch of commands, for programs with more bindings than can be pushed.
///
/// Grows by whole pools while the batch needs more. They stay, so that a batch like the last one makes none.
class DescriptorRing
{
public:
    DescriptorRing() = default;
    DescriptorRing(const DescriptorRing&) = delete;
    DescriptorRing& operator=(const DescriptorRing&) = delete;

    /// A set to be written once; null, with the reason in the report, when there is no memory left.
    VkDescriptorSet allocate(VulkanDevice& device, VkDescriptorSetLayout layout);

    /// Every set is void. The GPU must be past the batch.
    void reset(const VulkanDevice& device);
    void destroy(const VulkanDevice& device);

private:
    std::vector<VkDescriptorPool> m_pools;
    size_t m_open = 0; ///< the pool that sets come from; those behind it are empty
};

} // namespace helvantine
