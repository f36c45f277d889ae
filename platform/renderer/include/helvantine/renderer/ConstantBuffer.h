// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/RefCount.h>
#include <helvantine/renderer/Api.h>

#include <memory>

namespace helvantine
{

/// A block of shader constants, kept on the CPU and handed to each draw as it stands at that draw.
///
/// A new buffer is zero. A mapped buffer shows its previous bytes, and what isn't written stays: callers
/// leave out fields and rely on it. Binding keeps the buffer alive until its slot is bound anew.
class HELVANTINE_RENDERER_API ConstantBuffer : public IRefCount
{
public:
    ConstantBuffer();
    ~ConstantBuffer() override;

    /// size in bytes, rounded up to a multiple of 16; false, with the reason in the report, if 0 or above 65,536;
    /// false without a renderer.
    bool create(unsigned size);

    /// The bytes, or null before create and once the renderer is gone.
    void* map();
    /// From here on every draw sees the new bytes, wherever the buffer is bound.
    void unmap();

    void bindVS(unsigned slot); ///< slot 0 to 13 of the vertex stage
    void bindPS(unsigned slot); ///< slot 0 to 13 of the pixel stage

    struct Impl;
    Impl* impl() const { return m_impl.get(); }

private:
    std::unique_ptr<Impl> m_impl;
};

} // namespace helvantine
