// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/RenderWindow.h>

#include <cstddef>
#include <vector>

struct SDL_Window;
union SDL_Event;

namespace helvantine
{

/// Events that wait for pollEvent, oldest first. Keeps its memory, and drops what nobody fetches.
class WindowEventQueue
{
public:
    void push(const WindowEvent& event);
    bool pop(WindowEvent& event);

private:
    static constexpr size_t maxWaiting = 1024;

    std::vector<WindowEvent> m_events;
    size_t m_first = 0;
};

struct RenderWindow::Impl
{
    Impl() = default;
    ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    /// Makes the window on the desktop; false with the reason in the report.
    bool createNative(const char* title, unsigned style);

    /// Pixels of the drawable area.
    void getSize(unsigned& pixelsX, unsigned& pixelsY) const;

    SDL_Window* window = nullptr; ///< null for a hidden window, which touches no display
    unsigned width = 0;           ///< as created; a window on the desktop tells its size itself
    unsigned height = 0;
    struct Frame
    {
        int x = 0, y = 0, width = 0, height = 0;
    };
    Frame framed; ///< where the window was before it became full screen, or where it would have been made
    WindowEventQueue events;
};

/// The pixels of the window's drawable area.
void getDrawableSize(SDL_Window* window, unsigned& width, unsigned& height);

/// Takes one event from the system and puts it into the queue of the window that it is for. False when the
/// system has none.
bool dispatchSystemEvent();

/// Makes the window known to dispatchSystemEvent.
void receiveSystemEvents(SDL_Window* window, WindowEventQueue& events);

} // namespace helvantine
