// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine::tool
{

/// Tells which frame of a timeline is due.
///
/// It follows real time while it runs, stands still while it is paused, and goes on from where it was. Of a
/// step of real time that is longer than s_longestStep only that much counts: a slow frame slows the playback
/// down for a moment and skips nothing. At the end it stops on the last frame, or starts over.
class PlayClock
{
public:
    static constexpr double s_longestStep = 0.1; ///< seconds

    /// frameRate and frameCount are 1 at least.
    PlayClock(int frameRate, int frameCount, bool loop);

    void advance(double seconds); ///< real time since the last call
    void setRunning(bool running) { m_running = running; }
    void toggleRunning(); ///< starts over when it stands on the last frame
    void seek(int frame); ///< kept inside the timeline
    void seekBy(double seconds);

    int getFrame() const { return static_cast<int>(m_position); }
    int getLastFrame() const { return m_frameCount - 1; }
    bool isRunning() const { return m_running; }
    bool hasEnded() const { return m_ended; } ///< ran to the last frame, and nobody has moved it since
    double getSecondsToNextFrame() const;     ///< of real time, were it running
    bool takeJump(); ///< whether it has moved other than by running since it was last asked

private:
    void moveTo(double position);

    int m_frameRate;
    int m_frameCount;
    bool m_loop;
    bool m_running = true;
    bool m_ended = false;
    bool m_jumped = false;
    double m_position = 0.0; ///< in frames, so that every frame's start is a whole number
};

} // namespace helvantine::tool
