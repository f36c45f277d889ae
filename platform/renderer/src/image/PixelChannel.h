// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstdint>

namespace helvantine
{

/// One channel of a packed pixel, widened or narrowed to 8 bits.
class PixelChannel
{
public:
    PixelChannel(uint32_t mask, uint8_t absent)
        : m_mask(mask), m_shift(mask ? std::countr_zero(mask) : 0), m_highest(mask >> m_shift),
          m_absent(absent)
    {
    }

    uint8_t extract(uint32_t pixel) const
    {
        const uint32_t value = (pixel & m_mask) >> m_shift;
        if (m_highest == 255)
            return static_cast<uint8_t>(value);
        if (m_highest == 0)
            return m_absent;
        return static_cast<uint8_t>((uint64_t(value) * 255 + m_highest / 2) / m_highest);
    }

private:
    uint32_t m_mask;
    int m_shift;
    uint32_t m_highest; ///< 0: the pixel lacks the channel
    uint8_t m_absent;
};

} // namespace helvantine
