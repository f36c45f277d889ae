// SPDX-License-Identifier: MIT
#include "SilentDevice.h"

#include <helvantine/core/System.h>

#include <algorithm>
#include <cmath>

namespace helvantine
{

SilentDevice::SilentDevice(int rate) : m_rate(rate), m_started(getTime()) {}

uint64_t SilentDevice::getPosition() const
{
    if (m_hostClock)
        return m_base;
    return m_base + static_cast<uint64_t>((getTime() - m_started) * m_rate);
}

void SilentDevice::setHostClock(bool hostClock)
{
    if (hostClock == m_hostClock)
        return;
    m_base = getPosition();
    m_started = getTime();
    m_fraction = 0.0;
    m_hostClock = hostClock;
}

void SilentDevice::advance(double seconds)
{
    constexpr double longest = 1e9; // beyond it the count of samples would lose its meaning; NaN fails too
    if (!m_hostClock || !(seconds > 0.0 && seconds <= longest))
        return;
    // A frame is rarely a whole number of samples: what is left over is carried, so that the position after
    // many frames is that of their sum.
    const double samples = seconds * m_rate + m_fraction;
    const double whole = std::floor(samples);
    m_base += static_cast<uint64_t>(whole);
    m_fraction = samples - whole;
}

void SilentDevice::mix(float* samples, uint32_t frames)
{
    if (samples)
        std::fill_n(samples, 2 * static_cast<size_t>(frames), 0.0f);
}

} // namespace helvantine
