// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/D3D11Types.h>

namespace helvantine
{

/// Vertices on the GPU: immutable, or dynamic and rewritten by map.
class HELVANTINE_RENDERER_API VertexBuffer : public IRefCount
{
public:
    /// Bytes to write, or null if the buffer isn't dynamic or its renderer is gone.
    ///
    /// type is a D3D11_MAP. Previous bytes show and stay where they aren't rewritten. Draws already recorded
    /// keep the bytes they were recorded with.
    virtual void* map(int type) = 0;
    virtual void unmap() = 0;

    virtual void bind(unsigned slot) = 0;
    virtual void unbind(unsigned slot) = 0;
};

/// size and stride in bytes; usage a D3D11_USAGE, cpuAccess D3D11_CPU_ACCESS_FLAGs, misc 0.
/// data may be null for a dynamic buffer, which then starts zero. Null, with the reason in the report, for numbers
/// that can't be met and on failure; null without a renderer. Its count is 0.
HELVANTINE_RENDERER_API VertexBuffer* createVertexBuffer(const void* data, unsigned size, unsigned stride,
                                                         unsigned usage, unsigned cpuAccess, unsigned misc);

} // namespace helvantine
