// SPDX-License-Identifier: MIT
#pragma once

#include "FrameRange.h"
#include "ScratchFolder.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/host/Application.h>

#include <optional>
#include <string>

namespace helvantine
{
class Composition;
class ProjectSettings;
class RenderWindow;
} // namespace helvantine

namespace helvantine::tool
{

/// A host that shows a document in a window of the desktop. Errors are sentences for the user, empty for
/// success.
class WindowHost
{
public:
    explicit WindowHost(bool validation);
    ~WindowHost();

    struct Request
    {
        std::string document;
        std::string composition;       ///< empty: the first
        std::optional<FrameSize> size; ///< of the pictures; none: the project's
        bool fullscreen = false;
    };
    /// Reads the document, opens the window, and makes ahead of the first frame what drawing will need. The
    /// window scales the pictures to its own size.
    std::string open(const Request& request);

    /// Ticks and draws a frame, and shows it.
    void draw(int frame, bool playing, bool seeking);
    /// Shows the last frame again, for a window that was resized or uncovered.
    void showAgain();

    RenderWindow& window() { return *m_application.getRenderWindow(); }
    Composition& composition() { return *m_composition; }
    FrameSize size() const { return m_size; } ///< of the pictures
    Document& document() { return *m_application.getDocument(); }
    const ProjectSettings& settings() const;

private:
    std::string read(const Request& request);
    std::string createWindow(FrameSize size, bool fullscreen);

    ScratchFolder m_scratch; ///< the document's cache folder; goes after it
    Application m_application;
    SmartRef<Composition> m_composition;
    FrameSize m_size{};
};

} // namespace helvantine::tool
