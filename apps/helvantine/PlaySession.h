// SPDX-License-Identifier: MIT
#pragma once

#include "PlayClock.h"
#include "PlayControls.h"
#include "Warnings.h"

namespace helvantine::tool
{

class LiveFolder;
class WindowHost;

/// The window's title with frame and time: exact while the picture stands, a few times a second while it runs.
class PlayTitle
{
public:
    explicit PlayTitle(WindowHost& host) : m_host(host) {}

    void show(const PlayClock& clock, bool jumped, double now);

private:
    static constexpr double s_pace = 0.2; ///< seconds

    WindowHost& m_host;
    int m_frame = -1;
    bool m_running = false;
    double m_shown = 0.0; ///< when
};

/// A playback from the first frame to the end that the user, or a number of frames, gives it.
class PlaySession
{
public:
    struct Request
    {
        int frames = 0; ///< how many to draw; 0: until the user ends it
        bool loop = false;
        bool fullscreen = false; ///< of the window as it was opened
    };
    /// folder may be null.
    PlaySession(WindowHost& host, LiveFolder* folder, const Request& request, Warnings& warnings);

    /// True if the validation layer has spoken.
    bool run();

private:
    static constexpr double s_idlePace = 0.1;      ///< seconds between two showings of a picture that stands
    static constexpr double s_longestRest = 0.004; ///< seconds without a look at the keys

    /// How many frames the driver may still be busy with what a change has brought; meanwhile a frame counts as no
    /// more than one, so that the clock doesn't jump.
    static constexpr int s_settlingFrames = 4;

    bool isOver() const;
    void handleEvents();
    void showFrame(bool changed, double now);
    void rest() const;

    WindowHost& m_host;
    LiveFolder* m_folder;
    Warnings& m_warnings;
    PlayClock m_clock;
    PlayControls m_controls;
    PlayTitle m_title;
    double m_frameTime; ///< seconds
    bool m_counting;
    bool m_fullscreen; ///< of the window
    int m_framesLeft;
    int m_settling = 0;   ///< frames left
    int m_frame = -1;     ///< on the window
    double m_shown = 0.0; ///< when
};

} // namespace helvantine::tool
