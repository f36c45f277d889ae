// SPDX-License-Identifier: MIT
#include <helvantine/resource/RenderTargetResource.h>

#include <helvantine/core/Text.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

namespace
{

DXGI_FORMAT toColorFormat(RenderTargetResource::Format format)
{
    switch (format) {
    case RenderTargetResource::RGBA32F:
        return DXGI_FORMAT_R32G32B32A32_FLOAT;
    case RenderTargetResource::R16F:
        return DXGI_FORMAT_R16_FLOAT;
    default:
        return DXGI_FORMAT_B8G8R8A8_UNORM;
    }
}

} // namespace

RenderTargetResource::RenderTargetResource() = default;

RenderTargetResource::~RenderTargetResource() = default;

bool RenderTargetResource::create(int width, int height, Format format, int multisampleCount,
                                  int multisampleQuality, bool depthBuffer, Format)
{
    // Negative numbers become sizes and counts that no device has.
    RenderTarget* target =
        createRenderTarget(static_cast<unsigned>(width), static_cast<unsigned>(height), toColorFormat(format),
                           static_cast<unsigned>(multisampleCount), static_cast<unsigned>(multisampleQuality),
                           depthBuffer ? DXGI_FORMAT_D24_UNORM_S8_UINT : DXGI_FORMAT_UNKNOWN);
    if (!target)
        return false;
    m_renderTarget = target;
    m_multisampleCount = multisampleCount;
    m_hasDepthBuffer = depthBuffer;
    setName(formatString("RenderTarget %dx%d Depthbuffer: %s", width, height, depthBuffer ? "Yes" : "No")
                .c_str());
    return true;
}

bool RenderTargetResource::isDrawnLike(const RenderTargetResource& other) const
{
    if (!m_renderTarget || !other.m_renderTarget)
        return m_renderTarget == other.m_renderTarget;
    return m_renderTarget->getFormat() == other.m_renderTarget->getFormat() &&
           m_multisampleCount == other.m_multisampleCount && m_hasDepthBuffer == other.m_hasDepthBuffer;
}

} // namespace helvantine
