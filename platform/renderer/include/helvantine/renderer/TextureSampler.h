// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// How shaders filter a texture and what they read beyond its edges. Border colour is 0.
class HELVANTINE_RENDERER_API TextureSampler : public IRefCount
{
public:
    virtual void bind(unsigned slot) = 0;   ///< slot 0 to 15, shared by both stages
    virtual void unbind(unsigned slot) = 0; ///< the slot falls back to linear, clamped
};

/// Whether texels are compared is up to the program: SampleCmp compares by `comparison` and Sample doesn't, whatever
/// the filter. Where the device can't filter depth, the nearest texel is compared.
/// Null, with the reason in the report, for unknown numbers; null without a renderer. Its count is 0.
HELVANTINE_RENDERER_API TextureSampler*
createTextureSampler(D3D11_FILTER filter, D3D11_TEXTURE_ADDRESS_MODE u, D3D11_TEXTURE_ADDRESS_MODE v,
                     D3D11_TEXTURE_ADDRESS_MODE w, D3D11_COMPARISON_FUNC comparison);

} // namespace helvantine
