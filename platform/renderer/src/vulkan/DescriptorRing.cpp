// SPDX-License-Identifier: MIT
#include "vulkan/DescriptorRing.h"

#include "shader/ShaderProgram.h"
#include "vulkan/VulkanDevice.h"

#include <iterator>

namespace helvantine
{

namespace
{

/// Of the largest programs.
constexpr uint32_t setsOfAPool = 64;

VkDescriptorPool createPool(VulkanDevice& device)
{
    constexpr VkDescriptorPoolSize sizes[] = {
        {VK_DESCRIPTOR_TYPE_UNIFORM_BUFFER, 2 * constantRegisterCount * setsOfAPool},
        {VK_DESCRIPTOR_TYPE_SAMPLED_IMAGE, textureRegisterCount * setsOfAPool},
        {VK_DESCRIPTOR_TYPE_STORAGE_BUFFER, textureRegisterCount * setsOfAPool},
        {VK_DESCRIPTOR_TYPE_SAMPLER, 2 * samplerRegisterCount * setsOfAPool},
    };
    VkDescriptorPoolCreateInfo info{VK_STRUCTURE_TYPE_DESCRIPTOR_POOL_CREATE_INFO};
    info.maxSets = setsOfAPool;
    info.poolSizeCount = static_cast<uint32_t>(std::size(sizes));
    info.pPoolSizes = sizes;
    VkDescriptorPool pool = VK_NULL_HANDLE;
    return device.check(vkCreateDescriptorPool(device.getHandle(), &info, nullptr, &pool),
                        "create a descriptor pool")
               ? pool
               : VK_NULL_HANDLE;
}

} // namespace

VkDescriptorSet DescriptorRing::allocate(VulkanDevice& device, VkDescriptorSetLayout layout)
{
    VkDescriptorSetAllocateInfo info{VK_STRUCTURE_TYPE_DESCRIPTOR_SET_ALLOCATE_INFO};
    info.descriptorSetCount = 1;
    info.pSetLayouts = &layout;
    for (; m_open < m_pools.size(); ++m_open) {
        info.descriptorPool = m_pools[m_open];
        VkDescriptorSet set = VK_NULL_HANDLE;
        const VkResult result = vkAllocateDescriptorSets(device.getHandle(), &info, &set);
        if (result != VK_ERROR_OUT_OF_POOL_MEMORY && result != VK_ERROR_FRAGMENTED_POOL)
            return device.check(result, "allocate a descriptor set") ? set : VK_NULL_HANDLE;
    }
    const VkDescriptorPool pool = createPool(device);
    if (!pool)
        return VK_NULL_HANDLE;
    m_pools.push_back(pool);
    info.descriptorPool = pool;
    VkDescriptorSet set = VK_NULL_HANDLE;
    return device.check(vkAllocateDescriptorSets(device.getHandle(), &info, &set),
                        "allocate a descriptor set")
               ? set
               : VK_NULL_HANDLE;
}

void DescriptorRing::reset(const VulkanDevice& device)
{
    for (size_t i = 0; i < m_pools.size() && i <= m_open; ++i)
        vkResetDescriptorPool(device.getHandle(), m_pools[i], 0);
    m_open = 0;
}

void DescriptorRing::destroy(const VulkanDevice& device)
{
    for (const VkDescriptorPool pool : m_pools)
        vkDestroyDescriptorPool(device.getHandle(), pool, nullptr);
    m_pools.clear();
}

} // namespace helvantine
