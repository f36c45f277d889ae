// SPDX-License-Identifier: MIT
#include "vulkan/VulkanSampler.h"

#include "vulkan/FrameRing.h"
#include "vulkan/SlotState.h"
#include "vulkan/StateTables.h"
#include "vulkan/VulkanContext.h"

#include <algorithm>
#include <memory>

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
    bool comparison;
};

constexpr VkFilter nearest = VK_FILTER_NEAREST;
constexpr VkFilter linear = VK_FILTER_LINEAR;
constexpr VkSamplerMipmapMode nearestMip = VK_SAMPLER_MIPMAP_MODE_NEAREST;
constexpr VkSamplerMipmapMode linearMip = VK_SAMPLER_MIPMAP_MODE_LINEAR;

constexpr FilterInfo filterTable[] = {
    {D3D11_FILTER_MIN_MAG_MIP_POINT, nearest, nearestMip, false, false},
    {D3D11_FILTER_MIN_MAG_LINEAR_MIP_POINT, linear, nearestMip, false, false},
    {D3D11_FILTER_MIN_MAG_MIP_LINEAR, linear, linearMip, false, false},
    {D3D11_FILTER_ANISOTROPIC, linear, linearMip, true, false},
    {D3D11_FILTER_COMPARISON_MIN_MAG_MIP_POINT, nearest, nearestMip, false, true},
    {D3D11_FILTER_COMPARISON_MIN_MAG_LINEAR_MIP_POINT, linear, nearestMip, false, true},
    {D3D11_FILTER_COMPARISON_MIN_MAG_MIP_LINEAR, linear, linearMip, false, true},
};

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

VulkanSampler::VulkanSampler(VulkanContext& context) : GpuObject(context) {}

VulkanSampler::~VulkanSampler()
{
    if (getContext())
        releaseGpu();
}

bool VulkanSampler::create(VkSamplerCreateInfo info)
{
    VulkanDevice& device = getContext()->device();
    if (!device.check(vkCreateSampler(device.getHandle(), &info, nullptr, &m_sampler), "create a sampler"))
        return false;
    m_nearest = m_sampler;
    if (info.magFilter == VK_FILTER_NEAREST || device.getFeatures().linearDepth)
        return true;
    info.magFilter = info.minFilter = VK_FILTER_NEAREST;
    info.mipmapMode = VK_SAMPLER_MIPMAP_MODE_NEAREST;
    info.anisotropyEnable = VK_FALSE;
    return device.check(vkCreateSampler(device.getHandle(), &info, nullptr, &m_nearest), "create a sampler");
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

void VulkanSampler::releaseGpu()
{
    FrameRing& frames = getContext()->frames();
    if (m_nearest != m_sampler)
        frames.destroyLater(VK_OBJECT_TYPE_SAMPLER, m_nearest);
    frames.destroyLater(VK_OBJECT_TYPE_SAMPLER, m_sampler);
    m_sampler = m_nearest = VK_NULL_HANDLE;
}

TextureSampler* createTextureSampler(D3D11_FILTER filter, D3D11_TEXTURE_ADDRESS_MODE u,
                                     D3D11_TEXTURE_ADDRESS_MODE v, D3D11_TEXTURE_ADDRESS_MODE w,
                                     D3D11_COMPARISON_FUNC comparison)
{
    VulkanContext* context = VulkanContext::getCurrent();
    const auto found =
        std::find_if(std::begin(filterTable), std::end(filterTable),
                     [filter](const FilterInfo& candidate) { return candidate.filter == filter; });
    if (!context || found == std::end(filterTable) || !isComparison(comparison))
        return nullptr;
    const DeviceFeatures& features = context->device().getFeatures();
    VkSamplerCreateInfo info = describeDefaultSampler();
    info.magFilter = info.minFilter = found->texels;
    info.mipmapMode = found->mips;
    info.anisotropyEnable = found->anisotropic && features.anisotropy;
    info.maxAnisotropy = info.anisotropyEnable ? features.maxAnisotropy : 1.0f;
    info.compareEnable = found->comparison;
    info.compareOp = found->comparison ? toVulkan(comparison) : VK_COMPARE_OP_NEVER;
    if (!findAddressMode(u, features.mirrorOnce, info.addressModeU) ||
        !findAddressMode(v, features.mirrorOnce, info.addressModeV) ||
        !findAddressMode(w, features.mirrorOnce, info.addressModeW))
        return nullptr;
    auto sampler = std::make_unique<VulkanSampler>(*context);
    return sampler->create(info) ? sampler.release() : nullptr;
}

} // namespace helvantine
