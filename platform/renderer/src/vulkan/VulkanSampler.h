// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuObject.h"
#include "vulkan/VulkanApi.h"

#include <helvantine/renderer/TextureSampler.h>

#include <array>
#include <map>

namespace helvantine
{

class VulkanDevice;

/// What a texture is sampled with: as asked, and with the nearest texel for images that the device can't
/// filter.
struct SamplerHandles
{
    VkSampler filtered = VK_NULL_HANDLE;
    VkSampler nearest = VK_NULL_HANDLE; ///< the same one where nothing is filtered
};

/// Vulkan's samplers, one for each description: devices have few of them. They go with the renderer.
class SamplerCache
{
public:
    explicit SamplerCache(VulkanDevice& device) : m_device(device) {}
    ~SamplerCache();
    SamplerCache(const SamplerCache&) = delete;
    SamplerCache& operator=(const SamplerCache&) = delete;

    /// Null handles, with the reason in the report, when the device makes no more.
    SamplerHandles get(const VkSamplerCreateInfo& info);
    /// What an empty slot has: linear between texels and mips, clamped.
    SamplerHandles getDefault();

private:
    using Key = std::array<uint32_t, 8>;

    VkSampler getOne(const VkSamplerCreateInfo& info);

    VulkanDevice& m_device;
    std::map<Key, VkSampler> m_samplers;
};

class VulkanSampler final : public TextureSampler, public GpuObject
{
public:
    VulkanSampler(VulkanContext& context, const SamplerHandles& handles)
        : GpuObject(context), m_handles(handles)
    {
    }

    void bind(unsigned slot) override;
    void unbind(unsigned slot) override;

    const SamplerHandles& getHandles() const { return m_handles; }

private:
    SamplerHandles m_handles; ///< the cache's
};

} // namespace helvantine
