// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>

namespace helvantine
{

class Texture;

/// A colour image, a depth image or both, to draw into and then to read.
///
/// Starts cleared to 0 and depth 1. A multisampled target is resolved when it is popped; its texture is the
/// resolved image.
class HELVANTINE_RENDERER_API RenderTarget : public IRefCount
{
public:
    virtual unsigned getWidth() const = 0;  ///< pixels
    virtual unsigned getHeight() const = 0; ///< pixels
    virtual unsigned getFormat() const = 0; ///< the DXGI_FORMAT of the colour image, 0 without one

    /// The colour image; null without one. Borrowed.
    virtual Texture* getTexture() const = 0;
    /// The depth image, read as R32 float; null unless the depth format is R32_TYPELESS. Borrowed.
    virtual Texture* getDepthTexture() const = 0;
};

/// format: B8G8R8A8_UNORM, R32G32B32A32_FLOAT, R16_FLOAT, or 0 for no colour (R8G8B8A8_UNORM,
/// R16G16B16A16_FLOAT and R32_FLOAT are taken too). depthFormat: D24_UNORM_S8_UINT, R32_TYPELESS or 0 for
/// none.
///
/// Null, with the reason in the report, for a side of 0 or above 16,384, an unknown format, no image at all,
/// a sample count that the device lacks, a sample quality other than 0; null without a renderer. Its count is 0.
HELVANTINE_RENDERER_API RenderTarget* createRenderTarget(unsigned width, unsigned height, unsigned format,
                                                         unsigned sampleCount, unsigned sampleQuality,
                                                         unsigned depthFormat);

} // namespace helvantine
