// SPDX-License-Identifier: MIT
#include "Execute.h"
#include "PlayClock.h"
#include "PlayControls.h"
#include "SlowWork.h"

#include <helvantine/core/Text.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace helvantine::test
{
namespace
{

using tool::PlayClock;
using tool::PlayControls;

TEST(PlayClock, FollowsRealTimeAndNeverSkipsWhatASlowFrameTook)
{
    PlayClock clock(60, 300, false);
    EXPECT_EQ(clock.getFrame(), 0);
    for (int i = 0; i < 144; ++i)
        clock.advance(1.0 / 144);
    EXPECT_NEAR(clock.getFrame(), 60, 1);
    clock.seek(100);
    clock.advance(20.0);
    EXPECT_EQ(clock.getFrame(), 106) << "a tenth of a second at most";
    clock.advance(-1.0);
    EXPECT_EQ(clock.getFrame(), 106);
    clock.setRunning(false);
    clock.advance(0.1);
    EXPECT_EQ(clock.getFrame(), 106);
    clock.setRunning(true);
    clock.advance(0.05);
    EXPECT_EQ(clock.getFrame(), 109);
}

TEST(PlayClock, StopsOnTheLastFrameOrStartsOver)
{
    PlayClock once(10, 20, false);
    once.seek(19);
    EXPECT_FALSE(once.hasEnded()) << "it has been put there";
    once.advance(0.1);
    EXPECT_EQ(once.getFrame(), 19);
    EXPECT_TRUE(once.hasEnded());
    EXPECT_FALSE(once.isRunning());
    once.toggleRunning();
    EXPECT_EQ(once.getFrame(), 0);
    EXPECT_TRUE(once.isRunning());
    EXPECT_FALSE(once.hasEnded());

    PlayClock loop(10, 20, true);
    loop.seek(19);
    EXPECT_TRUE(loop.takeJump());
    EXPECT_FALSE(loop.takeJump());
    loop.advance(0.1);
    EXPECT_EQ(loop.getFrame(), 0);
    EXPECT_TRUE(loop.isRunning());
    EXPECT_TRUE(loop.takeJump());
}

TEST(PlayControls, MoveTheClockAndAskForTheWindow)
{
    PlayClock clock(60, 300, false);
    PlayControls controls(clock, false);
    const auto press = [&](int key, bool shift = false, bool repeat = false) {
        WindowEvent event;
        event.type = WindowEvent::Type::KeyDown;
        event.key = key;
        event.shift = shift;
        event.repeat = repeat;
        controls.handle(event);
        return clock.getFrame();
    };
    EXPECT_EQ(press(WindowEvent::Right), 60);
    EXPECT_EQ(press(WindowEvent::Right, false, true), 120) << "held down it goes on";
    EXPECT_EQ(press(WindowEvent::Left), 60);
    EXPECT_TRUE(clock.isRunning()) << "seeking plays on";
    EXPECT_EQ(press(WindowEvent::Right, true), 61);
    EXPECT_FALSE(clock.isRunning()) << "a single frame is to be looked at";
    EXPECT_EQ(press(WindowEvent::Left, true), 60);
    EXPECT_EQ(press(WindowEvent::End), 299);
    EXPECT_EQ(press(WindowEvent::Right), 299);
    EXPECT_EQ(press(WindowEvent::Home), 0);
    EXPECT_EQ(press(WindowEvent::Left), 0);
    press(WindowEvent::Space);
    EXPECT_TRUE(clock.isRunning());
    press(WindowEvent::Space, false, true);
    EXPECT_TRUE(clock.isRunning()) << "held down it toggles once";

    press(WindowEvent::F11);
    EXPECT_TRUE(controls.isFullscreen());
    press(WindowEvent::F11);
    EXPECT_FALSE(controls.isFullscreen());
    EXPECT_FALSE(controls.isClosing());
    press(WindowEvent::Escape);
    EXPECT_TRUE(controls.isClosing());
    PlayControls others(clock, true);
    others.handle({WindowEvent::Type::Close});
    EXPECT_TRUE(others.isClosing());
}

/// The command as a user runs it, on the document that the first example makes.
class PlayCommand : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(execute(std::string(FIRST_LIGHT) + " " + m_document), 0) << m_errors; }

    /// Exit code; standard error is in m_errors.
    int execute(const std::string& command) { return executeForErrors(command, m_errors); }
    int play(const std::string& arguments)
    {
        return execute(HELVANTINE_COMMAND " play " + m_document + " " + arguments);
    }

    TemporaryFolder m_folder;
    std::string m_document = m_folder.file("first-light.hfx");
    std::string m_errors;
};

TEST_F(PlayCommand, SaysThatThereIsNoDisplay)
{
    EXPECT_EQ(execute("unset DISPLAY WAYLAND_DISPLAY; " HELVANTINE_COMMAND " play " + m_document), 1);
    const std::string start = "helvantine: no window of 1280 by 720 pixels can be opened: no display: ";
    EXPECT_EQ(m_errors.substr(0, start.size()), start);
    EXPECT_EQ(play("--frames -1"), 2);
    EXPECT_EQ(play("--frames 0"), 2);
    EXPECT_EQ(m_errors, "helvantine: --frames 0: expected 1 or more\n");
    EXPECT_EQ(play("--size 0x10"), 2);
    EXPECT_EQ(play("--composition Nowhere"), 1);
    EXPECT_NE(m_errors.find("there is: "), std::string::npos);
}

TEST_F(PlayCommand, EndsByItselfWithTheValidationLayerSilent)
{
    if (!std::getenv("DISPLAY"))
        GTEST_SKIP() << "no display";
    const std::string busy = std::string(tool::slowWarmUp) + "\n";
    EXPECT_EQ(play("--frames 30 --size 320x180 --validation"), 0);
    EXPECT_THAT(m_errors, testing::AnyOf("", busy)) << "a machine at work elsewhere takes more than a second";
    EXPECT_EQ(play("--frames 3 --size 320x180 --fullscreen --validation"), 0);
    EXPECT_THAT(m_errors, testing::AnyOf("", busy));
}

} // namespace
} // namespace helvantine::test
