// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/audio/Api.h>

#include <cstdint>

namespace helvantine
{

/// Where sound is played, and the clock that playing keeps.
///
/// The position counts samples since the device was made. It follows the sound card, or real time where there
/// is none; under the host's clock it moves by advance alone, so that what is heard and measured depends on
/// the frame and not on how long it took. Sound is stereo throughout.
class HELVANTINE_AUDIO_API AudioDevice
{
public:
    virtual ~AudioDevice();

    virtual int getRate() const = 0;          ///< samples per second
    virtual uint64_t getPosition() const = 0; ///< samples

    /// Puts the position under the host's clock, or gives it back. Either way it goes on from where it is.
    virtual void setHostClock(bool hostClock) = 0;
    /// Moves the position under the host's clock; parts of a sample add up. Does nothing otherwise, or for
    /// what isn't a positive, finite number of seconds.
    virtual void advance(double seconds) = 0;
    /// Under the host's clock, the next frames of the soundtrack: left and right in turn, 2 · frames floats.
    /// Otherwise silence. Null or 0 frames does nothing.
    virtual void mix(float* samples, uint32_t frames) = 0;
};

/// device: the number of a sound card, -1 for the default one. rate: samples per second, 8,000 to 384,000.
/// Without a sound card the device keeps time in silence. The caller owns it. Null, with the reason in the
/// report, for a rate outside its range.
HELVANTINE_AUDIO_API AudioDevice* createAudioDevice(int device, int rate);

} // namespace helvantine
