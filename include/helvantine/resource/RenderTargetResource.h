// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/resource/Resource.h>

namespace helvantine
{

/// A render target of the project's own, made from numbers. Its size doesn't follow the window.
class HELVANTINE_FX_API RenderTargetResource : public Resource
{
    HELVANTINE_PLUGIN_CLASS(RenderTargetResource)

    /// The numbers are stored in documents.
    enum Format : int32_t
    {
        RGBA8 = 0, ///< deliberately blue first: DXGI_FORMAT_B8G8R8A8_UNORM
        RGBA32F = 1,
        D24S8 = 2, ///< as a colour format it acts as RGBA8, like any unknown number
        R16F = 3
    };

    RenderTargetResource();
    ~RenderTargetResource() override;

    /// width and height in pixels. On success the name becomes "RenderTarget WxH Depthbuffer: Yes" (or "No");
    /// on failure the old target and name stay. depthFormat is deliberately not looked at: a depth buffer is
    /// always D24S8.
    bool create(int width, int height, Format format, int multisampleCount, int multisampleQuality,
                bool depthBuffer, Format depthFormat);

    /// Null until a create succeeds.
    RenderTarget* getRenderTarget() const { return m_renderTarget.get(); }

    /// Whether the same pipelines draw into both: equal formats and sample counts, and a depth buffer in both or in
    /// neither. Size doesn't count.
    bool isDrawnLike(const RenderTargetResource& other) const;

private:
    SmartRef<RenderTarget> m_renderTarget;
    int m_multisampleCount = 0;
    bool m_hasDepthBuffer = false;
};

} // namespace helvantine
