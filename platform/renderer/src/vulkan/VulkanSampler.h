// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuObject.h"
#include "vulkan/VulkanApi.h"

#include <helvantine/renderer/TextureSampler.h>

namespace helvantine
{

/// A sampler, with a twin that takes the nearest texel for images that the device can't filter.
class VulkanSampler final : public TextureSampler, public GpuObject
{
public:
    explicit VulkanSampler(VulkanContext& context);
    ~VulkanSampler() override;

    bool create(VkSamplerCreateInfo info);

    void bind(unsigned slot) override;
    void unbind(unsigned slot) override;

    VkSampler getHandle() const { return m_sampler; }
    VkSampler getNearest() const { return m_nearest; }

private:
    void releaseGpu() override;

    VkSampler m_sampler = VK_NULL_HANDLE;
    VkSampler m_nearest = VK_NULL_HANDLE; ///< the same handle where filtering makes no difference
};

/// What an empty slot has: linear between texels and mips, clamped.
VkSamplerCreateInfo describeDefaultSampler();

} // namespace helvantine
