// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/audio/AudioDevice.h>

namespace helvantine
{

/// The device of a machine without a sound card: keeps time in silence.
class SilentDevice : public AudioDevice
{
public:
    explicit SilentDevice(int rate);

    int getRate() const override { return m_rate; }
    uint64_t getPosition() const override;
    void setHostClock(bool hostClock) override;
    void advance(double seconds) override;
    void mix(float* samples, uint32_t frames) override;

private:
    int m_rate;
    bool m_hostClock = false;
    uint64_t m_base = 0;     ///< samples, position when the clock was last changed
    double m_started = 0.0;  ///< seconds, when the real clock took over
    double m_fraction = 0.0; ///< of a sample, what advance has left over
};

} // namespace helvantine
