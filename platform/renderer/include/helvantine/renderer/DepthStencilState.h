// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// Depth and stencil test, shared by all users of equal descriptions.
///
/// A test whose buffer the current target lacks always passes.
class HELVANTINE_RENDERER_API DepthStencilState : public IRefCount
{
public:
    /// reference: the stencil reference value, of which the low byte counts.
    virtual void bind(unsigned reference) = 0;
};

/// The state for a description, from the renderer's cache; equal descriptions give the same object.
/// Borrowed: the cache keeps a reference until the renderer goes. Null without a renderer.
HELVANTINE_RENDERER_API DepthStencilState* getDepthStencilState(const D3D11_DEPTH_STENCIL_DESC& desc);

} // namespace helvantine
