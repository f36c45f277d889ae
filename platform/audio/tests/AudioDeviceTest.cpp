// SPDX-License-Identifier: MIT
#include <helvantine/audio/AudioDevice.h>
#include <helvantine/core/Report.h>

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

using namespace helvantine;

TEST(AudioDevice, FollowsRealTimeUntilTheHostTakesTheClock)
{
    const std::unique_ptr<AudioDevice> device(createAudioDevice(-1, 44100));
    ASSERT_NE(device, nullptr);
    const uint64_t before = device->getPosition();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const uint64_t after = device->getPosition();
    EXPECT_GE(after - before, 44100u * 30 / 1000 - 2);

    device->setHostClock(true);
    const uint64_t held = device->getPosition();
    EXPECT_GE(held, after);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(device->getPosition(), held);

    // Time under the host's clock isn't made up for.
    device->setHostClock(false);
    EXPECT_LT(device->getPosition(), held + 44100 * 5 / 1000);
}

TEST(AudioDevice, AdvanceCarriesPartsOfASample)
{
    const std::unique_ptr<AudioDevice> device(createAudioDevice(-1, 44100));
    device->setHostClock(true);
    const uint64_t start = device->getPosition();
    for (int frame = 0; frame < 24 * 100; ++frame)
        device->advance(1.0 / 24.0); // 1837.5 samples
    EXPECT_NEAR(static_cast<double>(device->getPosition() - start), 4410000.0, 1.0);
}

TEST(AudioDevice, RefusesTimesThatAreNone)
{
    const std::unique_ptr<AudioDevice> device(createAudioDevice(-1, 48000));
    device->advance(100.0); // not under the host's clock
    EXPECT_LT(device->getPosition(), 48000u * 90);
    device->setHostClock(true);
    const uint64_t start = device->getPosition();
    for (const double seconds :
         {-1.0, 0.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        device->advance(seconds);
    EXPECT_EQ(device->getPosition(), start);
}

TEST(AudioDevice, MixesSilence)
{
    const std::unique_ptr<AudioDevice> device(createAudioDevice(-1, 44100));
    device->setHostClock(true);
    std::vector<float> samples(9, 7.0f);
    device->mix(samples.data(), 4);
    EXPECT_EQ(samples, (std::vector<float>{0, 0, 0, 0, 0, 0, 0, 0, 7}));
    device->mix(nullptr, 4);
}

TEST(AudioDevice, RefusesARateOutsideItsRange)
{
    takeProblems();
    for (const int rate : {0, -44100, 7999, 384001})
        EXPECT_EQ(createAudioDevice(-1, rate), nullptr);
    const auto problems = takeProblems();
    ASSERT_EQ(problems.size(), 4u);
    EXPECT_EQ(problems[0].text, "rate of 0 samples per second, expected 8000 to 384000");
}
