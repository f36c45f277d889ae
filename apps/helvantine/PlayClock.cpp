// SPDX-License-Identifier: MIT
#include "PlayClock.h"

#include <algorithm>
#include <cmath>

namespace helvantine::tool
{

PlayClock::PlayClock(int frameRate, int frameCount, bool loop)
    : m_frameRate(frameRate), m_frameCount(frameCount), m_loop(loop)
{
}

void PlayClock::advance(double seconds)
{
    if (!m_running)
        return;
    m_position += std::clamp(seconds, 0.0, s_longestStep) * m_frameRate;
    if (m_position < m_frameCount)
        return;
    if (m_loop) {
        m_position = std::fmod(m_position, m_frameCount);
        m_jumped = true;
    } else {
        m_position = getLastFrame();
        m_running = false;
        m_ended = true;
    }
}

void PlayClock::toggleRunning()
{
    if (!m_running && getFrame() == getLastFrame())
        seek(0);
    m_running = !m_running;
}

void PlayClock::seek(int frame)
{
    moveTo(frame);
}

void PlayClock::seekBy(double seconds)
{
    moveTo(m_position + seconds * m_frameRate);
}

void PlayClock::moveTo(double position)
{
    m_position = std::clamp<double>(position, 0, getLastFrame());
    m_ended = false;
    m_jumped = true;
}

double PlayClock::getSecondsToNextFrame() const
{
    return (std::floor(m_position) + 1.0 - m_position) / m_frameRate;
}

bool PlayClock::takeJump()
{
    const bool jumped = m_jumped;
    m_jumped = false;
    return jumped;
}

} // namespace helvantine::tool
