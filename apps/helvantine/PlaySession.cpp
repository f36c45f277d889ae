// SPDX-License-Identifier: MIT
#include "PlaySession.h"

#include "Interruption.h"
#include "LiveFolder.h"
#include "WindowHost.h"

#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/timeline/Composition.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace helvantine::tool
{

void PlayTitle::show(const PlayClock& clock, bool jumped, double now)
{
    const bool changed = clock.getFrame() != m_frame || clock.isRunning() != m_running;
    const bool exact = jumped || !clock.isRunning();
    if (!changed || (!exact && now < m_shown + s_pace))
        return;
    m_frame = clock.getFrame();
    m_running = clock.isRunning();
    m_shown = now;
    const ProjectSettings& settings = m_host.settings();
    m_host.window().setTitle(formatString("%s - frame %d of %d, %.2f s%s", settings.getTitle().c_str(),
                                          m_frame, clock.getLastFrame(),
                                          static_cast<double>(m_frame) / settings.getFrameRate(),
                                          m_running ? "" : ", paused")
                                 .c_str());
}

PlaySession::PlaySession(WindowHost& host, LiveFolder* folder, const Request& request, Warnings& warnings)
    : m_host(host), m_folder(folder), m_warnings(warnings),
      m_clock(std::max(host.settings().getFrameRate(), 1), host.composition().getEndFrame(), request.loop),
      m_controls(m_clock, request.fullscreen), m_title(host),
      m_frameTime(1.0 / std::max(host.settings().getFrameRate(), 1)), m_counting(request.frames > 0),
      m_fullscreen(request.fullscreen), m_framesLeft(request.frames)
{
}

bool PlaySession::run()
{
    bool validation = m_warnings.show(nullptr);
    double last = getTime();
    while (!isOver()) {
        handleEvents();
        const double now = getTime();
        m_clock.advance(m_settling > 0 ? std::min(now - last, m_frameTime) : now - last);
        last = now;
        const bool changed = m_folder && m_folder->update(now, std::max(m_frame, 0));
        if (changed)
            m_warnings.passOverShaders();
        showFrame(changed, now);
        validation |= m_warnings.show(nullptr);
    }
    return validation;
}

bool PlaySession::isOver() const
{
    return m_controls.isClosing() || isInterrupted() ||
           (m_counting && (m_framesLeft == 0 || m_clock.hasEnded()));
}

void PlaySession::handleEvents()
{
    WindowEvent event;
    while (m_host.window().pollEvent(event)) {
        m_controls.handle(event);
        if (event.type == WindowEvent::Type::Resize)
            m_shown = 0.0;
    }
    if (m_controls.isFullscreen() != m_fullscreen) {
        m_fullscreen = m_controls.isFullscreen();
        m_host.window().setFullscreen(m_fullscreen);
    }
}

/// It is drawn if it isn't the one on the window, or if the document has changed.
void PlaySession::showFrame(bool changed, double now)
{
    const bool jumped = m_clock.takeJump();
    m_title.show(m_clock, jumped, now);
    if (changed || m_clock.getFrame() != m_frame) {
        m_frame = m_clock.getFrame();
        m_settling = changed ? s_settlingFrames : std::max(m_settling - 1, 0);
        m_host.draw(m_frame, m_clock.isRunning(), jumped);
        --m_framesLeft;
    } else if (now >= m_shown + s_idlePace) {
        m_host.showAgain();
    } else {
        return rest();
    }
    m_shown = now;
}

void PlaySession::rest() const
{
    const double seconds =
        m_clock.isRunning() ? std::min(m_clock.getSecondsToNextFrame(), s_longestRest) : s_longestRest;
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

} // namespace helvantine::tool
