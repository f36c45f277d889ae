// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec4.h>
#include <helvantine/renderer/Api.h>
#include <helvantine/renderer/Device.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

/// Laws of the renderer.
///
/// - One thread, the host's, calls everything; there is one renderer at a time, g_renderer.
/// - Everything that makes a GPU object is a free function beside its class and gives null without a
///   renderer. An object may outlive its renderer: binding or mapping it then does nothing.
/// - Objects are counted from 0: take them into a SmartRef at once. A slot, a stack entry and a draw keep theirs alive.
/// - What is bound stays bound until the next bind or unbind of its slot, across targets and frames.
/// - Clip space is Direct3D's: y up, depth 0 to 1, clockwise front faces, texture origin top left.
/// - beginFrame and endFrame bracket the drawing of a frame; outside of them both stacks are empty. What is
///   drawn or copied outside of them, to a target pushed there, is carried out before the next frame or
///   read-back.
/// - In steady state a frame makes no GPU object and allocates nothing.
namespace helvantine
{

struct Matrix;
struct Vec3;
class RenderTarget;
class RenderWindow;
class ScreenRenderer;
class Viewport;

/// What has been built and what the last frame took.
struct RendererStats
{
    uint32_t programsBeforeFirstFrame = 0; ///< shader programs compiled or loaded
    uint32_t programsAfterFirstFrame = 0;
    uint32_t pipelinesBeforeFirstFrame = 0;
    uint32_t pipelinesAfterFirstFrame = 0;
    uint64_t frames = 0; ///< frames ended
    uint32_t drawsLastFrame = 0;
    double gpuSecondsLastFrame = 0.0; ///< of the last frame that the GPU has finished; 0 unless setTimed
};

/// What a picture takes over from frames that were left out.
struct CarriedPicture
{
    bool any = false; ///< it may be another than if they had been drawn
    /// The target that still held something of them when it was read or drawn onto in part; null where a query was
    /// used. To be compared only: it may be gone.
    const RenderTarget* target = nullptr;
};

/// The GPU: device, immediate context, target and viewport stacks, frames.
///
/// The owner deletes it after all documents and before the window.
class HELVANTINE_RENDERER_API Renderer
{
public:
    enum ClearFlag : unsigned
    {
        ClearColor = 1,
        ClearDepth = 2 ///< clears the stencil as well where there is one
    };

    Renderer();
    ~Renderer(); ///< waits for the GPU; clears g_renderer if it names this one
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    /// Makes the device and the back buffer of mode's size, and sets g_renderer.
    ///
    /// mode: refresh rate 0/1 and format 0 mean the defaults (format 87). verticalSync waits for the display.
    /// sampleCount and sampleQuality are those of the back buffer; quality other than 0 is refused.
    /// offScreen renders to images of our own: nothing is presented, no display needed. False with the reason
    /// in the report when there is no device, no surface for the window, or a renderer already.
    bool create(const DXGI_MODE_DESC& mode, bool fullscreen, bool verticalSync, unsigned sampleCount,
                unsigned sampleQuality, RenderWindow* window, bool offScreen);

    ID3D11Device* getDevice() const;         ///< null before create
    ID3D11DeviceContext* getContext() const; ///< null before create
    ScreenRenderer* getScreenRenderer() const;

    /// Starts a frame: null pushes the back buffer, else the target, with a viewport of its size.
    void beginFrame(RenderTarget* target);
    /// Ends the frame: empties both stacks and hands the work to the GPU. Off-line it waits for the GPU.
    void endFrame();
    /// Shows the back buffer as large as it fits into the window, in its proportions, on black. Does nothing
    /// off-screen.
    void present();

    /// Off-line, a query is answered in the frame after the one that asked.
    void setOffline(bool offline);

    /// Measures on the GPU what frames take, for getStats. Off at first, since it costs some microseconds a
    /// frame; counts from the next frame on.
    void setTimed(bool timed);

    void
    pushRenderTarget(RenderTarget* target); ///< pushes a viewport of the target's size too; null does nothing
    void popRenderTarget();                 ///< pops both; on an empty stack does nothing
    RenderTarget* getRenderTarget() const;  ///< top entry, null if empty; borrowed
    unsigned getRenderTargetCount() const;  ///< entries on the stack

    void pushViewport(Viewport* viewport);
    void popViewport();            ///< the viewport that came with the top target stays
    Viewport* getViewport() const; ///< top entry, null if empty; borrowed

    /// Clears the whole top target, whatever the viewport. flags: ClearFlag bits, 0 does nothing. A part that
    /// the target lacks is ignored; without a target nothing happens.
    void clear(unsigned flags, const Vec4& color, float depth, unsigned char stencil);

    /// The frames before the next one are left out. From now on the renderer follows which pictures would be others if
    /// they had been drawn: those made from a target that still holds something of them, or after a query was used.
    void skipFrames();
    /// Of a target's colour image; nothing while no frames were left out. null asks for the back buffer.
    CarriedPicture findCarried(const RenderTarget* target) const;
    /// Tells that the next draw fills the quadrilateral of these corners, in ring order, and discards no pixel of it.
    /// A draw that isn't told of counts as leaving something of its target as it was.
    void declareQuad(const std::array<Vec3, 4>& corners, const Matrix& toClip);

    /// The exact pixels of a target's colour image, rows from the top without padding, in the target's
    /// format: 4 bytes a pixel in the order blue, green, red, alpha for format 87, red first for 28, floats
    /// for the float formats, halves for 54. null reads the back buffer. Waits for the GPU. Call it outside a
    /// frame, or for a target that isn't on the stack. False if there is nothing to read.
    bool readBack(RenderTarget* target, std::vector<uint8_t>& pixels);

    /// The same for the depth image of a target with depth format 39: one float a pixel.
    bool readBackDepth(RenderTarget* target, std::vector<float>& depth);

    RenderTarget* getBackBuffer() const; ///< borrowed; null before create
    const RendererStats& getStats() const;
    const char* getDeviceName() const; ///< empty before create

    /// Turns the validation layer on for renderers created from now on. Its messages reach the report under
    /// the module "validation". Off at first; create fails when it is wanted and not installed.
    static void enableValidation(bool enable);

    struct Impl;
    Impl& impl() const { return *m_impl; }

private:
    std::unique_ptr<Impl> m_impl;
};

/// The renderer that was created last; null without one.
extern HELVANTINE_RENDERER_API Renderer* g_renderer;

} // namespace helvantine
