// SPDX-License-Identifier: MIT
#include <helvantine/audio/AudioDevice.h>

#include "SilentDevice.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

namespace helvantine
{

namespace
{

constexpr int rateMin = 8000;
constexpr int rateMax = 384000;

} // namespace

AudioDevice::~AudioDevice() = default;

AudioDevice* createAudioDevice(int /*device*/, int rate)
{
    if (rate < rateMin || rate > rateMax) {
        reportProblem("audio", formatString("rate of %d samples per second, expected %d to %d", rate, rateMin,
                                            rateMax));
        return nullptr;
    }
    return new SilentDevice(rate);
}

} // namespace helvantine
