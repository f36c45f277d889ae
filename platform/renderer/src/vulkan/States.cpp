// SPDX-License-Identifier: MIT
#include "vulkan/States.h"

#include "vulkan/DrawRecorder.h"
#include "vulkan/StateTables.h"
#include "vulkan/VulkanContext.h"

#include <bit>

namespace helvantine
{

VulkanBlendState::VulkanBlendState(VulkanContext& context, const D3D11_BLEND_DESC& desc, uint32_t id)
    : GpuObject(context), m_alphaToCoverage(desc.AlphaToCoverageEnable != 0), m_id(id)
{
    const D3D11_RENDER_TARGET_BLEND_DESC& first = desc.RenderTarget[0];
    m_attachment.blendEnable = first.BlendEnable != 0;
    m_attachment.srcColorBlendFactor = toVulkan(first.SrcBlend, VK_BLEND_FACTOR_ONE);
    m_attachment.dstColorBlendFactor = toVulkan(first.DestBlend, VK_BLEND_FACTOR_ZERO);
    m_attachment.colorBlendOp = toVulkan(first.BlendOp);
    m_attachment.srcAlphaBlendFactor = toVulkan(first.SrcBlendAlpha, VK_BLEND_FACTOR_ONE);
    m_attachment.dstAlphaBlendFactor = toVulkan(first.DestBlendAlpha, VK_BLEND_FACTOR_ZERO);
    m_attachment.alphaBlendOp = toVulkan(first.BlendOpAlpha);
    m_attachment.colorWriteMask = first.RenderTargetWriteMask & D3D11_COLOR_WRITE_ENABLE_ALL;
}

void VulkanBlendState::bind(const float* factor, unsigned mask)
{
    if (getContext())
        getContext()->draws().setBlend(*this, factor, mask);
}

VulkanRasterizerState::VulkanRasterizerState(VulkanContext& context, const D3D11_RASTERIZER_DESC& desc)
    : GpuObject(context), m_desc(desc)
{
}

void VulkanRasterizerState::bind()
{
    if (getContext())
        getContext()->draws().setRasterizer(*this);
}

VulkanDepthStencilState::VulkanDepthStencilState(VulkanContext& context, const D3D11_DEPTH_STENCIL_DESC& desc)
    : GpuObject(context), m_desc(desc)
{
}

void VulkanDepthStencilState::bind(unsigned reference)
{
    if (getContext())
        getContext()->draws().setDepthStencil(*this, reference);
}

RasterizerState* StateCache::get(VulkanContext& context, const D3D11_RASTERIZER_DESC& desc)
{
    const auto number = [](auto value) { return static_cast<uint32_t>(value); };
    SmartRef<VulkanRasterizerState>& state = m_rasterizers[{
        number(desc.FillMode), number(desc.CullMode), number(desc.FrontCounterClockwise),
        number(desc.DepthBias), std::bit_cast<uint32_t>(desc.DepthBiasClamp),
        std::bit_cast<uint32_t>(desc.SlopeScaledDepthBias), number(desc.DepthClipEnable),
        number(desc.ScissorEnable), number(desc.MultisampleEnable), number(desc.AntialiasedLineEnable)}];
    if (!state)
        state = new VulkanRasterizerState(context, desc);
    return state.get();
}

DepthStencilState* StateCache::get(VulkanContext& context, const D3D11_DEPTH_STENCIL_DESC& desc)
{
    const D3D11_DEPTH_STENCILOP_DESC& front = desc.FrontFace;
    const D3D11_DEPTH_STENCILOP_DESC& back = desc.BackFace;
    const auto number = [](auto value) { return static_cast<uint32_t>(value); };
    SmartRef<VulkanDepthStencilState>& state = m_depthStencils[{
        number(desc.DepthEnable), number(desc.DepthWriteMask), number(desc.DepthFunc),
        number(desc.StencilEnable), desc.StencilReadMask, desc.StencilWriteMask, number(front.StencilFailOp),
        number(front.StencilDepthFailOp), number(front.StencilPassOp), number(front.StencilFunc),
        number(back.StencilFailOp), number(back.StencilDepthFailOp), number(back.StencilPassOp),
        number(back.StencilFunc)}];
    if (!state)
        state = new VulkanDepthStencilState(context, desc);
    return state.get();
}

BlendState* StateCache::get(VulkanContext& context, const D3D11_BLEND_DESC& desc)
{
    const auto number = [](auto value) { return static_cast<uint32_t>(value); };
    Key<66> key{number(desc.AlphaToCoverageEnable), number(desc.IndependentBlendEnable)};
    size_t next = 2;
    for (const D3D11_RENDER_TARGET_BLEND_DESC& target : desc.RenderTarget) {
        for (const uint32_t field :
             {number(target.BlendEnable), number(target.SrcBlend), number(target.DestBlend),
              number(target.BlendOp), number(target.SrcBlendAlpha), number(target.DestBlendAlpha),
              number(target.BlendOpAlpha), number(target.RenderTargetWriteMask)})
            key[next++] = field;
    }
    SmartRef<VulkanBlendState>& state = m_blends[key];
    if (!state)
        state = new VulkanBlendState(context, desc, static_cast<uint32_t>(m_blends.size()));
    return state.get();
}

void StateCache::clear()
{
    m_rasterizers.clear();
    m_depthStencils.clear();
    m_blends.clear();
}

RasterizerState* getRasterizerState(const D3D11_RASTERIZER_DESC& desc)
{
    VulkanContext* context = VulkanContext::getCurrentOrLost();
    return context ? context->states().get(*context, desc) : nullptr;
}

DepthStencilState* getDepthStencilState(const D3D11_DEPTH_STENCIL_DESC& desc)
{
    VulkanContext* context = VulkanContext::getCurrentOrLost();
    return context ? context->states().get(*context, desc) : nullptr;
}

BlendState* getBlendState(const D3D11_BLEND_DESC& desc)
{
    VulkanContext* context = VulkanContext::getCurrentOrLost();
    return context ? context->states().get(*context, desc) : nullptr;
}

} // namespace helvantine
