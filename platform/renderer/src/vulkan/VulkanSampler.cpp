// SPDX-License-Identifier: MIT
#include "vulkan/VulkanSampler.h"

#include "vulkan/SlotState.h"
#include "vulkan/StateTables.h"
#include "vulkan/VulkanContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <iterator>

namespace helvantine
{

namespace
{

struct FilterInfo
{
    D3D11_FILTER filter;
    VkFilter texels;
    VkSamplerMipmapMode mips;
    bool anisotropic;
};

constexpr VkFilter nearest = VK_FILTER_NEAREST;
constexpr VkFilter linear = VK_FILTER_LINEAR;
constexpr VkSamplerMipmapMode nearestMip = VK_SAMPLER_MIPMAP_MODE_NEAREST;
constexpr VkSamplerMipmapMode linearMip = VK_SAMPLER_MIPMAP_MODE_LINEAR;

/// Whether a sampler compares is up to the program that uses it.
constexpr FilterInfo filterTable[] = {
    {D3D11_FILTER_MIN_MAG_MIP_POINT, nearest, nearestMip, false},
    {D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT, linear, nearestMip, false},
    {D3D11_FILTER_MIN_MAG_MIP_LINEAR, linear, linearMip, false},
    {D3D11_FILTER_ANISOTROPIC, linear, linearMip, true},
    {D3D11_FILTER_COMPARISON_MIN_MAG_MIP_POINT, nearest, nearestMip, false},
    {D3D11_FILTER_COMPARISON_MIN_MAG_LINEAR_MIP_POINT, linear, nearestMip, false},
    {D3D11_FILTER_COMPARISON_MIN_MAG_MIP_LINEAR, linear, linearMip, false},
};

VkSamplerCreateInfo describeDefaultSampler()
{
    VkSamplerCreateInfo info{VK_STRUCTURE_TYPE_SAMPLER_CREATE_INFO};
    info.magFilter = info.minFilter = VK_FILTER_LINEAR;
    info.mipmapMode = VK_SAMPLER_MIPMAP_MODE_LINEAR;
    info.addressModeU = info.addressModeV = info.addressModeW = VK_SAMPLER_ADDRESS_MODE_CLAMP_TO_EDGE;
    info.maxAnisotropy = 1.0f;
    info.maxLod = VK_LOD_CLAMP_NONE;
    info.borderColor = VK_BORDER_COLOR_FLOAT_TRANSPARENT_BLACK;
    return info;
}

bool findAddressMode(D3D11_TEXTURE_ADDRESS_MODE mode, bool mirrorOnce, VkSamplerAddressMode& result)
{
    switch (mode) {
    case D3D11_TEXTURE_ADDRESS_WRAP:
        result = VK_SAMPLER_ADDRESS_MODE_REPEAT;
        return true;
    case D3D11_TEXTURE_ADDRESS_MIRROR:
        result = VK_SAMPLER_ADDRESS_MODE_MIRRORED_REPEAT;
        return true;
    case D3D11_TEXTURE_ADDRESS_CLAMP:
        result = VK_SAMPLER_ADDRESS_MODE_CLAMP_TO_EDGE;
        return true;
    case D3D11_TEXTURE_ADDRESS_BORDER:
        result = VK_SAMPLER_ADDRESS_MODE_CLAMP_TO_BORDER;
        return true;
    case D3D11_TEXTURE_ADDRESS_MIRROR_ONCE:
        result =
            mirrorOnce ? VK_SAMPLER_ADDRESS_MODE_MIRROR_CLAMP_TO_EDGE : VK_SAMPLER_ADDRESS_MODE_CLAMP_TO_EDGE;
        return true;
    }
    return false;
}

} // namespace

SamplerCache::~SamplerCache()
{
    for (const auto& [key, sampler] : m_samplers)
        vkDestroySampler(m_device.getHandle(), sampler, nullptr);
}

SamplerHandles SamplerCache::get(VkSamplerCreateInfo info)
{
    VkSamplerCreateInfo nearestInfo = info;
    nearestInfo.magFilter = nearestInfo.minFilter = VK_FILTER_NEAREST;
    nearestInfo.mipmapMode = VK_SAMPLER_MIPMAP_MODE_NEAREST;
    nearestInfo.anisotropyEnable = VK_FALSE;
    nearestInfo.maxAnisotropy = 1.0f;
    SamplerHandles handles;
    for (const bool compares : {false, true}) {
        info.compareEnable = nearestInfo.compareEnable = compares;
        handles.filtered[compares] = getOne(info);
        handles.nearest[compares] = getOne(nearestInfo);
        if (!handles.filtered[compares] || !handles.nearest[compares])
            return {};
    }
    return handles;
}

SamplerHandles SamplerCache::getDefault()
{
    return get(describeDefaultSampler());
}

VkSampler SamplerCache::getOne(const VkSamplerCreateInfo& info)
{
    const auto number = [](auto value) { return static_cast<uint32_t>(value); };
    const Key key{number(info.magFilter),     number(info.mipmapMode),
                  number(info.addressModeU),  number(info.addressModeV),
                  number(info.addressModeW),  number(info.anisotropyEnable),
                  number(info.compareEnable), info.compareEnable ? number(info.compareOp) : 0};
    const auto found = m_samplers.find(key);
    if (found != m_samplers.end())
        return found->second;
    VkSampler sampler = VK_NULL_HANDLE;
    if (!m_device.check(vkCreateSampler(m_device.getHandle(), &info, nullptr, &sampler), "create a sampler"))
        return VK_NULL_HANDLE;
    return m_samplers[key] = sampler;
}

void VulkanSampler::bind(unsigned slot)
{
    if (getContext())
        getContext()->slots().setSampler(slot, this);
}

void VulkanSampler::unbind(unsigned slot)
{
    if (getContext())
        getContext()->slots().setSampler(slot, nullptr);
}

TextureSampler* createTextureSampler(D3D11_FILTER filter, D3D11_TEXTURE_ADDRESS_MODE u,
                                     D3D11_TEXTURE_ADDRESS_MODE v, D3D11_TEXTURE_ADDRESS_MODE w,
                                     D3D11_COMPARISON_FUNC comparison)
{
    VulkanContext* context = VulkanContext::getCurrent();
    if (!context)
        return nullptr;
    const auto found =
        std::find_if(std::begin(filterTable), std::end(filterTable),
                     [filter](const FilterInfo& candidate) { return candidate.filter == filter; });
    const DeviceFeatures& features = context->device().getFeatures();
    VkSamplerCreateInfo info = describeDefaultSampler();
    if (found == std::end(filterTable) || !isComparison(comparison) ||
        !findAddressMode(u, features.mirrorOnce, info.addressModeU) ||
        !findAddressMode(v, features.mirrorOnce, info.addressModeV) ||
        !findAddressMode(w, features.mirrorOnce, info.addressModeW))
    {
        reportProblem("renderer",
                      formatString("no sampler of filter %u, address modes %u, %u and %u, comparison %u",
                                   unsigned(filter), unsigned(u), unsigned(v), unsigned(w),
                                   unsigned(comparison)));
        return nullptr;
    }
    info.magFilter = info.minFilter = found->texels;
    info.mipmapMode = found->mips;
    info.anisotropyEnable = found->anisotropic && features.anisotropy;
    info.maxAnisotropy = info.anisotropyEnable ? features.maxAnisotropy : 1.0f;
    info.compareOp = toVulkan(comparison);
    const SamplerHandles handles = context->samplers().get(info);
    return handles.filtered[0] ? new VulkanSampler(*context, handles, comparison) : nullptr;
}

} // namespace helvantine
