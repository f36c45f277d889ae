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
/// filter. Of each kind the first reads, the second compares: to use one for the other brings some drivers down.
struct SamplerHandles
{
    std::array<VkSampler, 2> filtered{};
    std::array<VkSampler, 2> nearest{}; ///< the same ones where nothing is filtered
};

/// Vulkan's samplers, one for each description: devices have few of them. They go with the renderer.
class SamplerCache
{
public:
    explicit SamplerCache(VulkanDevice& device) : m_device(device) {}
    ~SamplerCache();
    SamplerCache(const SamplerCache&) = delete;
    SamplerCache& operator=(const SamplerCache&) = delete;

    /// compareOp counts for those that compare. Null handles, with the reason in the report, when the device makes
    /// no more.
    SamplerHandles get(VkSamplerCreateInfo info);
    /// What an empty slot has: linear between texels and mips, clamped; no comparison comes true.
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
    VulkanSampler(VulkanContext& context, const SamplerHandles& handles, D3D11_COMPARISON_FUNC comparison)
        : GpuObject(context), m_handles(handles), m_comparison(comparison)
    {
    }

    void bind(unsigned slot) override;
    void unbind(unsigned slot) override;

    const SamplerHandles& getHandles() const { return m_handles; }
    D3D11_COMPARISON_FUNC getComparison() const { return m_comparison; }

private:
    SamplerHandles m_handles; ///< the cache's
    D3D11_COMPARISON_FUNC m_comparison;
};

} // namespace helvantine
