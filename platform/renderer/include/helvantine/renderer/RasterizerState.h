// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// Fill, culling, winding, depth bias and depth clip, shared by all users of equal descriptions.
///
/// Depth clip off clamps depth and drops nothing: flares draw at depths outside 0 to 1.
class HELVANTINE_RENDERER_API RasterizerState : public IRefCount
{
public:
    virtual void bind() = 0;
};

/// The state for a description, from the renderer's cache; equal descriptions give the same object.
/// Borrowed: the cache keeps a reference until the renderer goes. Null without a renderer.
HELVANTINE_RENDERER_API RasterizerState* getRasterizerState(const D3D11_RASTERIZER_DESC& desc);

} // namespace helvantine
