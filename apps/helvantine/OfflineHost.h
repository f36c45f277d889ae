// SPDX-License-Identifier: MIT
#pragma once

#include "FrameRange.h"
#include "ScratchFolder.h"

#include <helvantine/core/SmartRef.h>
#include <helvantine/host/Application.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
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
/// random numbers start from one seed. Where the renderer finds that a picture takes something over from frames that
/// weren't drawn, the host begins anew and draws all of them. Errors are sentences for the user, empty for success.
class OfflineHost
{
public:
    /// preroll: how many frames before each one are drawn, whatever its picture takes over; none: as many as it needs.
    explicit OfflineHost(bool validation, std::optional<int> preroll = {});
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
    void drawAlone(int frame);

    /// What the host has spent so far, in seconds.
    struct Times
    {
        double load = 0.0; ///< reading the document, and warming up
        double tick = 0.0;
        double draw = 0.0; ///< recording, waiting for the GPU, reading back
        double gpu = 0.0;  ///< as the GPU measures it; a part of draw
    };
    const Times& times() const { return m_times; }

    /// Is told when the host begins anew: with null before the document goes, then with the one that is there instead.
    void setDocumentListener(std::function<void(const Document*)> listener)
    {
        m_documentListener = std::move(listener);
    }

    // These two live until the next draw.
    Document& document() const { return *m_application->getDocument(); }
    Composition& composition() { return *m_composition; }
    int countDrawnFrames() const { return m_drawnCount; }
    /// What a picture took over from frames that weren't drawn, for the user to read; empty if none did.
    const std::string& getCarrier() const { return m_carrier; }

    const ProjectSettings& settings() const;

private:
    void createApplication();
    void closeApplication();
    std::string beginAnew();
    std::string drawWithThoseBefore(int frame);
    std::string findCarrier() const;
    void tick(int frame);
    void drawFrame(int frame);

    bool m_validation;
    std::optional<int> m_preroll;
    ScratchFolder m_scratch; ///< the document's cache folder; goes after it
    std::unique_ptr<Application> m_application;
    std::function<void(const Document*)> m_documentListener;
    std::string m_path;
    std::string m_compositionName;
    FrameSize m_size;
    SmartRef<Composition> m_composition;
    SmartRef<RenderTarget> m_target;
    Times m_times;
    int m_nextFrame = 0;   ///< first that hasn't been ticked
    int m_drawnFrame = -1; ///< last that has been drawn
    int m_drawnCount = 0;
    bool m_drawsAll = false; ///< a picture takes something over, so no frame is left out any more
    std::string m_carrier;
};

} // namespace helvantine::tool
