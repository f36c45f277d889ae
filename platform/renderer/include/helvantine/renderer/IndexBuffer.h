// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// Immutable indices on the GPU.
class HELVANTINE_RENDERER_API IndexBuffer : public IRefCount
{
public:
    virtual void bind() = 0;
    virtual void unbind() = 0;
};

/// size in bytes; usage a D3D11_USAGE; format DXGI_FORMAT_R32_UINT or DXGI_FORMAT_R16_UINT.
/// Null, with the reason in the report, for numbers that can't be met and on failure, and without a renderer. Count 0.
HELVANTINE_RENDERER_API IndexBuffer* createIndexBuffer(const void* data, unsigned size, unsigned usage,
                                                       unsigned format);

} // namespace helvantine
