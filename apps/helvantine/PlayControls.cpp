// SPDX-License-Identifier: MIT
#include "PlayControls.h"

#include "PlayClock.h"

#include <helvantine/renderer/RenderWindow.h>

namespace helvantine::tool
{

void PlayControls::handle(const WindowEvent& event)
{
    if (event.type == WindowEvent::Type::Close)
        m_closing = true;
    else if (event.type == WindowEvent::Type::KeyDown)
        press(event);
}

void PlayControls::press(const WindowEvent& event)
{
    switch (event.key) {
    case WindowEvent::Escape:
        m_closing = true;
        break;
    case WindowEvent::Space:
        if (!event.repeat)
            m_clock.toggleRunning();
        break;
    case WindowEvent::F11:
        if (!event.repeat)
            m_fullscreen = !m_fullscreen;
        break;
    case WindowEvent::Left:
        seek(-1, event.shift);
        break;
    case WindowEvent::Right:
        seek(1, event.shift);
        break;
    case WindowEvent::Home:
        m_clock.seek(0);
        break;
    case WindowEvent::End:
        m_clock.seek(m_clock.getLastFrame());
        break;
    default:
        break;
    }
}

/// A step of one frame is for looking at it, so it pauses.
void PlayControls::seek(int direction, bool byFrame)
{
    if (!byFrame)
        return m_clock.seekBy(direction);
    m_clock.setRunning(false);
    m_clock.seek(m_clock.getFrame() + direction);
}

} // namespace helvantine::tool
