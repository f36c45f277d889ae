// SPDX-License-Identifier: MIT
#include "vulkan/ShadowedBytes.h"

#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"

#include <cstring>

namespace helvantine
{

const UploadSlice& ShadowedBytes::getSlice(VulkanContext& context)
{
    const uint64_t serial = context.frames().getSerial();
    if (m_serial == serial)
        return m_slice;
    constexpr VkDeviceSize everyPurpose = 256;
    m_slice = context.frames().uploads().allocate(m_bytes.size(), everyPurpose);
    if (m_slice.data)
        std::memcpy(m_slice.data, m_bytes.data(), m_bytes.size());
    m_serial = m_slice.data ? serial : 0;
    return m_slice;
}

} // namespace helvantine
