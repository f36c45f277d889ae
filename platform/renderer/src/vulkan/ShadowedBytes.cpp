// SPDX-License-Identifier: MIT
#include "vulkan/ShadowedBytes.h"

#include "vulkan/DrawRecorder.h"
#include "vulkan/FrameRing.h"
#include "vulkan/VulkanContext.h"

#include <cstring>

namespace helvantine
{

void ShadowedBytes::markChanged(VulkanContext& context)
{
    m_serial = 0;
    context.draws().inputsChanged();
}

const UploadSlice& ShadowedBytes::getSlice(VulkanContext& context)
{
    const uint64_t serial = context.frames().getSerial();
    if (m_serial == serial)
        return m_slice;
    // Devices may read on up to the next multiple before they see the end: zeros stand there.
    const VkDeviceSize multiple = context.device().getFeatures().constantAlignment;
    const VkDeviceSize whole = (m_bytes.size() + multiple - 1) / multiple * multiple;
    m_slice = context.frames().uploads().allocate(whole, multiple);
    if (m_slice.data) {
        std::memcpy(m_slice.data, m_bytes.data(), m_bytes.size());
        std::memset(static_cast<uint8_t*>(m_slice.data) + m_bytes.size(), 0, whole - m_bytes.size());
    }
    m_serial = m_slice.data ? serial : 0;
    return m_slice;
}

} // namespace helvantine
