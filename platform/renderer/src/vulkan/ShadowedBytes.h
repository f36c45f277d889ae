// SPDX-License-Identifier: MIT
#pragma once

#include "vulkan/UploadRing.h"

#include <cstdint>
#include <vector>

namespace helvantine
{

class VulkanContext;

/// Bytes that the CPU rewrites and draws read as they stood when the draw was recorded.
///
/// The bytes live here; each batch that needs them gets its own copy in the upload ring, and another one
/// after every change.
class ShadowedBytes
{
public:
    void resize(size_t size) { m_bytes.resize(size); }
    uint8_t* getData() { return m_bytes.data(); }
    size_t getSize() const { return m_bytes.size(); }

    /// The bytes have changed: the next use takes a new copy.
    void markChanged(VulkanContext& context);

    /// The copy for the open batch; its buffer is null when there is no memory left.
    const UploadSlice& getSlice(VulkanContext& context);

private:
    std::vector<uint8_t> m_bytes;
    UploadSlice m_slice;
    uint64_t m_serial = 0; ///< batch that m_slice belongs to; 0 for none
};

} // namespace helvantine
