// SPDX-License-Identifier: MIT
#include "PlayCommand.h"

#include "Interruption.h"
#include "PlayClock.h"
#include "PlayControls.h"
#include "Warnings.h"
#include "WindowHost.h"

#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/timeline/Composition.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <thread>

namespace helvantine::tool
{

namespace
{

constexpr const char* keys = R"(Keys:
  Space               pause, and go on; at the end: from the start
  Left, Right         one second back or on
  Shift with them     one frame back or on, and pause
  Home, End           to the first or the last frame
  F11                 full screen, and back
  Escape              quit

Frames are due by the clock; a slow machine skips some, but a stop of more than a tenth of a second counts
as a tenth. The playback stops on the last frame, unless --loop is given; with --frames it ends there.
)";

/// The window's title with frame and time: exact while the picture stands, a few times a second while it runs.
class TitleBar
{
public:
    TitleBar(RenderWindow& window, const ProjectSettings& settings) : m_window(window), m_settings(settings)
    {
    }

    void show(const PlayClock& clock, bool jumped, double now)
    {
        const bool changed = clock.getFrame() != m_frame || clock.isRunning() != m_running;
        const bool exact = jumped || !clock.isRunning();
        if (!changed || (!exact && now < m_shown + s_pace))
            return;
        m_frame = clock.getFrame();
        m_running = clock.isRunning();
        m_shown = now;
        m_window.setTitle(formatString("%s - frame %d of %d, %.2f s%s", m_settings.getTitle().c_str(),
                                       m_frame, clock.getLastFrame(),
                                       static_cast<double>(m_frame) / m_settings.getFrameRate(),
                                       m_running ? "" : ", paused")
                              .c_str());
    }

private:
    static constexpr double s_pace = 0.2; ///< seconds

    RenderWindow& m_window;
    const ProjectSettings& m_settings;
    int m_frame = -1;
    bool m_running = false;
    double m_shown = 0.0; ///< when
};

/// A playback from the first frame to the end that the user or the options give it.
class Session
{
public:
    Session(WindowHost& host, const PlayOptions& options)
        : m_host(host),
          m_clock(std::max(host.settings().getFrameRate(), 1), host.composition().getEndFrame(), options.loop),
          m_controls(m_clock, options.fullscreen), m_title(host.window(), host.settings()),
          m_warnings(options.document), m_fullscreen(options.fullscreen), m_framesLeft(options.frames),
          m_counting(options.frames > 0)
    {
    }

    /// True if the validation layer has spoken.
    bool run()
    {
        bool validation = m_warnings.show(nullptr);
        double last = getTime();
        while (!isOver()) {
            handleEvents();
            const double now = getTime();
            m_clock.advance(now - last);
            last = now;
            showFrame(now);
            validation |= m_warnings.show(nullptr);
        }
        return validation;
    }

private:
    static constexpr double s_idlePace = 0.1;     ///< seconds between two showings of a picture that stands
    static constexpr double s_longestRest = 0.01; ///< seconds without a look at the keys

    bool isOver() const
    {
        return m_controls.isClosing() || isInterrupted() ||
               (m_counting && (m_framesLeft == 0 || m_clock.hasEnded()));
    }

    void handleEvents()
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

    void showFrame(double now)
    {
        const bool jumped = m_clock.takeJump();
        m_title.show(m_clock, jumped, now);
        if (m_clock.getFrame() != m_frame) {
            m_frame = m_clock.getFrame();
            m_host.draw(m_frame, m_clock.isRunning(), jumped);
            --m_framesLeft;
        } else if (now >= m_shown + s_idlePace) {
            m_host.showAgain();
        } else {
            rest();
            return;
        }
        m_shown = now;
    }

    void rest() const
    {
        const double seconds =
            m_clock.isRunning() ? std::min(m_clock.getSecondsToNextFrame(), s_longestRest) : s_longestRest;
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    }

    WindowHost& m_host;
    PlayClock m_clock;
    PlayControls m_controls;
    TitleBar m_title;
    Warnings m_warnings;
    bool m_fullscreen; ///< of the window
    int m_framesLeft;
    bool m_counting;
    int m_frame = -1;     ///< on the window
    double m_shown = 0.0; ///< when
};

} // namespace

void addPlayCommand(CLI::App& app, PlayOptions& options)
{
    CLI::App* play = app.add_subcommand("play", "Plays a document in a window.");
    play->footer(keys);
    play->add_option("document", options.document, "The document")->required()->type_name("DOCUMENT");
    play->add_option("--composition", options.composition,
                     "Name of the composition; the first one by default")
        ->type_name("NAME");
    play->add_option("--size", options.size,
                     "Of the pictures, in pixels; the project's size by default. The window scales them")
        ->type_name("WxH");
    play->add_option("--frames", options.frames, "Ends by itself when so many frames have been drawn")
        ->type_name("N");
    play->add_flag("--fullscreen", options.fullscreen, "Begins in full screen");
    play->add_flag("--loop", options.loop, "Starts over at the end");
    play->add_flag("--validation", options.validation,
                   "Runs under the graphics validation layer, whose messages fail the command");
}

int runPlay(const PlayOptions& options)
{
    WindowHost::Request request{options.document, options.composition, std::nullopt, options.fullscreen};
    if (!options.size.empty() && !(request.size = parseFrameSize(options.size)))
        return fail(ExitUsage,
                    formatString("--size %s: expected width x height such as 1280x720, each 1 to %u",
                                 options.size.c_str(), maxSide));
    if (options.frames < 0)
        return fail(ExitUsage, formatString("--frames %d: expected 1 or more", options.frames));

    watchInterruption();
    WindowHost host(options.validation);
    if (const std::string error = host.open(request); !error.empty())
        return fail(ExitFailed, error);
    if (host.composition().getEndFrame() < 1)
        return fail(ExitFailed, options.document + ": the timeline is empty");
    if (Session(host, options).run())
        return fail(ExitFailed, options.document + ": the validation layer has spoken");
    return ExitDone;
}

} // namespace helvantine::tool
