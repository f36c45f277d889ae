// SPDX-License-Identifier: MIT
#include <helvantine/renderer/RenderWindow.h>

#include "image/ImageFile.h"
#include "window/WindowImpl.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#define SDL_MAIN_HANDLED
#include <SDL.h>
#include <SDL_vulkan.h>

#include <cstdlib>

namespace helvantine
{

namespace
{

constexpr unsigned maxIconSide = 256; ///< larger ones exceed what a window manager takes

uint32_t getWindowFlags(unsigned style)
{
    uint32_t flags = SDL_WINDOW_VULKAN | SDL_WINDOW_ALLOW_HIGHDPI;
    if (!(style & RenderWindow::Framed))
        flags |= SDL_WINDOW_BORDERLESS;
    if (style & RenderWindow::Resizable)
        flags |= SDL_WINDOW_RESIZABLE;
    if (style & RenderWindow::FullScreen)
        flags |= SDL_WINDOW_FULLSCREEN_DESKTOP;
    return flags;
}

unsigned chooseIconMip(const ImageData& image)
{
    unsigned mip = 0;
    while (mip + 1 < image.mipCount &&
           (image.getLevel(0, mip).width > maxIconSide || image.getLevel(0, mip).height > maxIconSide))
        ++mip;
    return mip;
}

void setWindowIcon(SDL_Window* window, ImageData& image)
{
    const unsigned mip = chooseIconMip(image);
    const ImageData::Level& level = image.getLevel(0, mip);
    SDL_Surface* surface = SDL_CreateRGBSurfaceWithFormatFrom(
        image.getPixels(0, mip), static_cast<int>(level.width), static_cast<int>(level.height), 32,
        static_cast<int>(level.rowBytes), SDL_PIXELFORMAT_RGBA32);
    if (!surface)
        return;
    SDL_SetWindowIcon(window, surface);
    SDL_FreeSurface(surface);
}

/// What has to be said to the system once before a window is made.
void setHints()
{
    SDL_SetMainReady();
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1"); // an interrupt ends the process, as it does everywhere
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
#if defined(__linux__)
    // Wayland's library writes to standard error where it can't run, and off-screen drivers show nothing.
    SDL_SetHint(SDL_HINT_VIDEODRIVER, std::getenv("XDG_RUNTIME_DIR") ? "x11,wayland" : "x11");
#endif
}

} // namespace

void getDrawableSize(SDL_Window* window, unsigned& width, unsigned& height)
{
    int x = 0;
    int y = 0;
    SDL_Vulkan_GetDrawableSize(window, &x, &y);
    width = static_cast<unsigned>(x);
    height = static_cast<unsigned>(y);
}

RenderWindow::Impl::~Impl()
{
    if (!window)
        return;
    SDL_DestroyWindow(window);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

bool RenderWindow::Impl::createNative(const char* title, unsigned style)
{
    setHints();
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        reportProblem("window", formatString("no display: %s", SDL_GetError()));
        return false;
    }
    window = SDL_CreateWindow(title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, static_cast<int>(width),
                              static_cast<int>(height), getWindowFlags(style));
    if (!window) {
        reportProblem("window", formatString("no window of %u by %u pixels on display \"%s\": %s", width,
                                             height, SDL_GetCurrentVideoDriver(), SDL_GetError()));
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return false;
    }
    framed = {SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, static_cast<int>(width),
              static_cast<int>(height)};
    receiveSystemEvents(window, events);
    return true;
}

void RenderWindow::Impl::getSize(unsigned& pixelsX, unsigned& pixelsY) const
{
    pixelsX = width;
    pixelsY = height;
    if (window)
        getDrawableSize(window, pixelsX, pixelsY);
}

RenderWindow::RenderWindow() : m_impl(std::make_unique<Impl>()) {}

RenderWindow::~RenderWindow() = default;

bool RenderWindow::create(unsigned width, unsigned height, const char* title, unsigned style, void* parent)
{
    if (width == 0 || height == 0 || width > maxImageSide || height > maxImageSide) {
        reportProblem("window", formatString("%u by %u pixels, sides from 1 to %u are possible", width,
                                             height, maxImageSide));
        return false;
    }
    if (parent) {
        reportProblem("window", "a window inside another program's window is not possible here");
        return false;
    }
    auto impl = std::make_unique<Impl>();
    impl->width = width;
    impl->height = height;
    if ((style & Visible) && !impl->createNative(title ? title : "", style))
        return false;
    m_impl = std::move(impl);
    return true;
}

void RenderWindow::setTitle(const char* title)
{
    if (m_impl->window && title)
        SDL_SetWindowTitle(m_impl->window, title);
}

void RenderWindow::setIcon(const char* path)
{
    if (!m_impl->window || !path || !*path)
        return;
    ImageFile file;
    std::string error;
    if (!file.open(path, error))
        return;
    std::optional<ImageData> image = file.decode(error);
    if (image && image->format == DXGI_FORMAT_R8G8B8A8_UNORM)
        setWindowIcon(m_impl->window, *image);
}

void RenderWindow::setFullscreen(bool fullscreen)
{
    SDL_Window* window = m_impl->window;
    if (!window || fullscreen == ((SDL_GetWindowFlags(window) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0))
        return;
    Impl::Frame& framed = m_impl->framed;
    if (fullscreen) {
        SDL_GetWindowPosition(window, &framed.x, &framed.y);
        SDL_GetWindowSize(window, &framed.width, &framed.height);
    }
    SDL_SetWindowFullscreen(window, fullscreen ? SDL_WINDOW_FULLSCREEN_DESKTOP : 0);
    if (!fullscreen) { // without a window manager nobody else puts it back
        SDL_SetWindowSize(window, framed.width, framed.height);
        SDL_SetWindowPosition(window, framed.x, framed.y);
    }
}

unsigned RenderWindow::getWidth() const
{
    unsigned width = 0;
    unsigned height = 0;
    m_impl->getSize(width, height);
    return width;
}

unsigned RenderWindow::getHeight() const
{
    unsigned width = 0;
    unsigned height = 0;
    m_impl->getSize(width, height);
    return height;
}

bool RenderWindow::pollEvent(WindowEvent& event)
{
    if (!m_impl->window)
        return false;
    while (!m_impl->events.pop(event)) {
        if (!dispatchSystemEvent())
            return false;
    }
    return true;
}

} // namespace helvantine
