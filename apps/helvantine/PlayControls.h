// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine
{
struct WindowEvent;
}

namespace helvantine::tool
{

class PlayClock;

/// What the user's keys ask of a playback: the clock's share is done at once, the window's is remembered.
class PlayControls
{
public:
    PlayControls(PlayClock& clock, bool fullscreen) : m_clock(clock), m_fullscreen(fullscreen) {}

    void handle(const WindowEvent& event);

    bool isClosing() const { return m_closing; }
    bool isFullscreen() const { return m_fullscreen; }

private:
    void press(const WindowEvent& event);
    void seek(int direction, bool byFrame);

    PlayClock& m_clock;
    bool m_fullscreen;
    bool m_closing = false;
};

} // namespace helvantine::tool
