// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/renderer/Api.h>

#include <cstdint>
#include <memory>

namespace helvantine
{

/// What the user did to a window.
struct WindowEvent
{
    enum class Type
    {
        Close,
        Resize,    ///< width, height
        KeyDown,   ///< key, repeat, shift
        KeyUp,     ///< key, shift
        MouseDown, ///< x, y, button
        MouseUp,   ///< x, y, button
        MouseMove, ///< x, y
        MouseWheel ///< y: steps away from the user
    };

    enum Key : int32_t
    {
        Unknown = 0,
        Escape = 27,
        Space = 32, ///< printable keys bear their lower-case ASCII code
        Left = 0x100,
        Right,
        Up,
        Down,
        Home,
        End,
        PageUp,
        PageDown,
        F11
    };

    Type type = Type::Close;
    int32_t width = 0;
    int32_t height = 0;
    int32_t key = Unknown;
    bool repeat = false;
    bool shift = false; ///< held down
    int32_t x = 0;
    int32_t y = 0;
    int32_t button = 0; ///< 1 left, 2 middle, 3 right
};

/// A window of the desktop, or a hidden one that needs no desktop.
///
/// The owner deletes it after the Renderer that draws to it.
class HELVANTINE_RENDERER_API RenderWindow
{
public:
    /// Bits of a window's style. In use are 0, 6, 14 and 78.
    enum Style : unsigned
    {
        Visible = 2,
        Framed = 4, ///< title bar and border
        Resizable = 8,
        FullScreen = 64 ///< without frame
    };

    RenderWindow();
    ~RenderWindow();
    RenderWindow(const RenderWindow&) = delete;
    RenderWindow& operator=(const RenderWindow&) = delete;

    /// width and height in pixels, style of Style bits, parent a native handle or null. Style 0 is a hidden
    /// window, which succeeds without a display too; any other fails there, with the reason in the report.
    bool create(unsigned width, unsigned height, const char* title, unsigned style, void* parent);

    void setTitle(const char* title);
    /// Sets the small and the large icon from an image file; an empty or unreadable path does nothing.
    void setIcon(const char* path);
    void setFullscreen(bool fullscreen);

    unsigned getWidth() const;  ///< pixels of the drawable area
    unsigned getHeight() const; ///< pixels of the drawable area

    /// Takes the oldest waiting event; false when there is none.
    bool pollEvent(WindowEvent& event);

    struct Impl;
    Impl& impl() const { return *m_impl; }

private:
    std::unique_ptr<Impl> m_impl;
};

} // namespace helvantine
