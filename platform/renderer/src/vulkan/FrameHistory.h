// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Matrix.h>
#include <helvantine/renderer/Renderer.h>

#include <array>
#include <cstdint>

namespace helvantine
{

class VulkanContext;
class VulkanProgram;
class VulkanRenderTarget;

/// What is known of the picture in an image, as it was when the image was last drawn into.
struct ImageHistory
{
    const RenderTarget* owner = nullptr; ///< the target whose image it is; null for one that isn't drawn into
    uint32_t gap = 0;                    ///< the last one before that; behind a later one nothing is known
    bool known = true;                   ///< all of it was made from what is known
    const RenderTarget* carrier = nullptr; ///< if it isn't: whose picture came in; null: no target's
};

/// Follows which pictures would be others if frames that were left out had been drawn.
///
/// Leaving out frames makes a gap. What targets hold is unknown behind it, until all of an image is written anew from
/// what is known: cleared, or covered by a draw that replaces it. So are slots until they are set. Whatever reads the
/// unknown, or is drawn in part onto it, is unknown as well. A query's user may keep its answers, so behind a gap its
/// use makes all unknown.
/// Before the first gap nothing is followed.
class FrameHistory
{
public:
    explicit FrameHistory(VulkanContext& context) : m_context(context) {}

    void skipFrames();
    bool isFollowing() const { return m_gap > 0; }
    CarriedPicture findCarried(const ImageHistory& picture) const;

    /// Of a target that is made now: known before the first gap, and unknown behind it, since it might have been made
    /// and drawn in a frame that was left out.
    static ImageHistory begin(const RenderTarget& target) { return {&target, 0, true, nullptr}; }

    /// What a draw does to its target, as far as its states tell.
    struct Draw
    {
        bool replaces = false;      ///< where it covers, the colour; no test keeps it from a pixel
        bool testsDepth = false;    ///< and may write it; the stencil counts as depth
        bool wholeViewport = false; ///< the viewport reaches over all of the target
    };

    void noteQuad(const std::array<Vec3, 4>& corners, const Matrix& toClip); ///< what the next draw fills
    void dropQuad() { m_hasQuad = false; }                                   ///< that draw was none
    void noteDraw(const VulkanProgram& program, VulkanRenderTarget& target, const Draw& draw);
    void noteClear(VulkanRenderTarget& target, unsigned flags); ///< Renderer::ClearFlag
    void noteQuery();

private:
    bool isKnown(const ImageHistory& picture) const
    {
        return !picture.owner || (picture.known && picture.gap == m_gap);
    }
    CarriedPicture findCarried(const VulkanProgram& program) const; ///< in what it reads
    bool takeCoverage(const VulkanRenderTarget& target);

    VulkanContext& m_context;
    uint32_t m_gap = 0; ///< gaps so far
    bool m_queried = false;
    bool m_hasQuad = false;
    std::array<Vec4, 4> m_quad{}; ///< in clip space, in ring order
};

} // namespace helvantine
