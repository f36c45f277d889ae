// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/GpuObject.h"
#include "vulkan/VulkanApi.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/RasterizerState.h>

#include <array>
#include <map>

namespace helvantine
{

/// The first render target's blending, translated.
class VulkanBlendState final : public BlendState, public GpuObject
{
public:
    VulkanBlendState(VulkanContext& context, const D3D11_BLEND_DESC& desc, uint32_t id);

    void bind(const float* factor, unsigned mask) override;

    const VkPipelineColorBlendAttachmentState& getAttachment() const { return m_attachment; }
    bool isAlphaToCoverage() const { return m_alphaToCoverage; }
    uint32_t getId() const { return m_id; } ///< in pipeline keys; 0 is no state

private:
    VkPipelineColorBlendAttachmentState m_attachment{};
    bool m_alphaToCoverage;
    uint32_t m_id;
};

class VulkanRasterizerState final : public RasterizerState, public GpuObject
{
public:
    VulkanRasterizerState(VulkanContext& context, const D3D11_RASTERIZER_DESC& desc);

    void bind() override;

    const D3D11_RASTERIZER_DESC& getDesc() const { return m_desc; }

private:
    D3D11_RASTERIZER_DESC m_desc;
};

class VulkanDepthStencilState final : public DepthStencilState, public GpuObject
{
public:
    VulkanDepthStencilState(VulkanContext& context, const D3D11_DEPTH_STENCIL_DESC& desc);

    void bind(unsigned reference) override;

    const D3D11_DEPTH_STENCIL_DESC& getDesc() const { return m_desc; }

private:
    D3D11_DEPTH_STENCIL_DESC m_desc;
};

/// One state object for each description, kept until the renderer goes.
class StateCache
{
public:
    RasterizerState* get(VulkanContext& context, const D3D11_RASTERIZER_DESC& desc);
    DepthStencilState* get(VulkanContext& context, const D3D11_DEPTH_STENCIL_DESC& desc);
    BlendState* get(VulkanContext& context, const D3D11_BLEND_DESC& desc);
    void clear();

private:
    /// The fields of a description one after the other, so that padding doesn't count.
    template <size_t count>
    using Key = std::array<uint32_t, count>;

    std::map<Key<10>, SmartRef<VulkanRasterizerState>> m_rasterizers;
    std::map<Key<14>, SmartRef<VulkanDepthStencilState>> m_depthStencils;
    std::map<Key<66>, SmartRef<VulkanBlendState>> m_blends;
};

} // namespace helvantine
