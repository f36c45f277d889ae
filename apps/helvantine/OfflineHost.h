// SPDX-License-Identifier: MIT
#pragma once

#include "FrameRange.h"
#include "ScratchFolder.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/host/Application.h>

#include <cstdint>
#include <string>
#include <vector>

namespace helvantine
{
class Composition;
class ProjectSettings;
class RenderTarget;
} // namespace helvantine

namespace helvantine::tool
{

/// A host that draws frames by number, without a window and without a clock.
///
/// A frame is the same whichever frames are drawn with it: everything before it is ticked in order, the frame
/// right before it is drawn too, since effects may look back by one, time follows from the number alone, and
/// random numbers start from one seed. Errors are sentences for the user, empty for success.
class OfflineHost
{
public:
    explicit OfflineHost(bool validation);
    ~OfflineHost();

    /// Unpacks and reads the document. Damage that leaves something to draw is a warning.
    std::string load(const std::string& path);
    /// By name or id; an empty name takes the first composition that is no folder, or the root if only that
    /// has effects.
    std::string choose(const std::string& name);
    /// Makes the picture's target, and ahead of the first frame what drawing into it will need.
    std::string setSize(FrameSize size);
    /// Makes again what drawing will need, after a change of the document.
    void warmUp();

    /// Draws a frame and reads its pixels: rows from the top, blue, green, red, alpha. Frames of one host are
    /// asked for in rising order.
    std::string draw(int frame, std::vector<uint8_t>& pixels);

    /// Draws a frame without those before it, to have drawn it.
    std::string drawAlone(int frame);

    /// What the host has spent so far, in seconds.
    struct Times
    {
        double load = 0.0; ///< reading the document, and warming up
        double tick = 0.0;
        double draw = 0.0; ///< recording, waiting for the GPU, reading back
        double gpu = 0.0;  ///< as the GPU measures it; a part of draw
    };
    const Times& times() const { return m_times; }

    Document& document() const { return *m_application.getDocument(); }
    Composition& composition() { return *m_composition; }
    const ProjectSettings& settings() const;

private:
    void tick(int frame);
    void drawFrame(int frame);

    ScratchFolder m_scratch; ///< the document's cache folder; goes after it
    Application m_application;
    std::string m_path;
    SmartRef<Composition> m_composition;
    SmartRef<RenderTarget> m_target;
    Times m_times;
    int m_nextFrame = 0;   ///< first that hasn't been ticked
    int m_drawnFrame = -1; ///< last that has been drawn
};

} // namespace helvantine::tool
