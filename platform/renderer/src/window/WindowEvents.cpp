// SPDX-License-Identifier: MIT
#include "window/WindowImpl.h"

#define SDL_MAIN_HANDLED
#include <SDL.h>

namespace helvantine
{

namespace
{

constexpr const char* queueName = "helvantine.events";

struct KeyName
{
    SDL_Keycode code;
    int32_t key;
};

constexpr KeyName namedKeys[] = {
    {SDLK_LEFT, WindowEvent::Left},     {SDLK_RIGHT, WindowEvent::Right},       {SDLK_UP, WindowEvent::Up},
    {SDLK_DOWN, WindowEvent::Down},     {SDLK_HOME, WindowEvent::Home},         {SDLK_END, WindowEvent::End},
    {SDLK_PAGEUP, WindowEvent::PageUp}, {SDLK_PAGEDOWN, WindowEvent::PageDown}, {SDLK_F11, WindowEvent::F11},
};

int32_t translateKey(SDL_Keycode code)
{
    for (const KeyName& named : namedKeys) {
        if (named.code == code)
            return named.key;
    }
    return code > 0 && code < 128 ? code : WindowEvent::Unknown; // the others are ASCII already
}

int32_t translateButton(uint8_t button)
{
    return button; // left, middle and right are 1, 2 and 3 here too
}

/// The mouse speaks in the desktop's units, which are larger than pixels on a scaled desktop.
void setPosition(WindowEvent& out, SDL_Window* window, int x, int y)
{
    int unitsX = 0;
    int unitsY = 0;
    unsigned pixelsX = 0;
    unsigned pixelsY = 0;
    SDL_GetWindowSize(window, &unitsX, &unitsY);
    getDrawableSize(window, pixelsX, pixelsY);
    out.x = unitsX > 0 ? static_cast<int32_t>(int64_t(x) * pixelsX / unitsX) : x;
    out.y = unitsY > 0 ? static_cast<int32_t>(int64_t(y) * pixelsY / unitsY) : y;
}

bool translateWindowEvent(const SDL_WindowEvent& event, SDL_Window* window, WindowEvent& out)
{
    if (event.event == SDL_WINDOWEVENT_CLOSE) {
        out.type = WindowEvent::Type::Close;
        return true;
    }
    if (event.event != SDL_WINDOWEVENT_SIZE_CHANGED)
        return false;
    unsigned width = 0;
    unsigned height = 0;
    getDrawableSize(window, width, height);
    out.type = WindowEvent::Type::Resize;
    out.width = static_cast<int32_t>(width);
    out.height = static_cast<int32_t>(height);
    return true;
}

void translateButtonEvent(const SDL_MouseButtonEvent& event, SDL_Window* window, WindowEvent& out)
{
    const bool down = event.type == SDL_MOUSEBUTTONDOWN;
    out.type = down ? WindowEvent::Type::MouseDown : WindowEvent::Type::MouseUp;
    out.button = translateButton(event.button);
    setPosition(out, window, event.x, event.y);
}

void translateKeyEvent(const SDL_KeyboardEvent& event, WindowEvent& out)
{
    out.type = event.type == SDL_KEYDOWN ? WindowEvent::Type::KeyDown : WindowEvent::Type::KeyUp;
    out.key = translateKey(event.keysym.sym);
    out.repeat = event.repeat != 0;
    out.shift = (event.keysym.mod & KMOD_SHIFT) != 0;
}

bool translate(const SDL_Event& event, SDL_Window* window, WindowEvent& out)
{
    switch (event.type) {
    case SDL_WINDOWEVENT:
        return translateWindowEvent(event.window, window, out);
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        translateKeyEvent(event.key, out);
        return true;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        translateButtonEvent(event.button, window, out);
        return true;
    case SDL_MOUSEMOTION:
        out.type = WindowEvent::Type::MouseMove;
        setPosition(out, window, event.motion.x, event.motion.y);
        return true;
    case SDL_MOUSEWHEEL:
        out.type = WindowEvent::Type::MouseWheel;
        out.y = event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -event.wheel.y : event.wheel.y;
        return true;
    default:
        return false;
    }
}

} // namespace

void WindowEventQueue::push(const WindowEvent& event)
{
    if (m_events.size() - m_first < maxWaiting)
        m_events.push_back(event);
}

bool WindowEventQueue::pop(WindowEvent& event)
{
    if (m_first == m_events.size())
        return false;
    event = m_events[m_first++];
    if (m_first == m_events.size()) {
        m_events.clear();
        m_first = 0;
    }
    return true;
}

void receiveSystemEvents(SDL_Window* window, WindowEventQueue& events)
{
    SDL_SetWindowData(window, queueName, &events);
}

bool dispatchSystemEvent()
{
    SDL_Event event;
    if (!SDL_PollEvent(&event))
        return false;
    // All events that are translated have the window's number in the same place.
    SDL_Window* window = SDL_GetWindowFromID(event.window.windowID);
    auto* queue = window ? static_cast<WindowEventQueue*>(SDL_GetWindowData(window, queueName)) : nullptr;
    WindowEvent translated;
    if (queue && translate(event, window, translated))
        queue->push(translated);
    return true;
}

} // namespace helvantine
