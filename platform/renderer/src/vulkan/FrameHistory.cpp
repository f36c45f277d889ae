// SPDX-License-Identifier: MIT
#include "vulkan/FrameHistory.h"

#include "vulkan/SlotState.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanProgram.h"
#include "vulkan/VulkanRenderTarget.h"

#include <algorithm>

namespace helvantine
{

namespace
{

/// Twice the area of the triangle that a point makes with an edge; its sign tells the point's side.
float measureSide(const Vec4& from, const Vec4& to, float x, float y)
{
    return (to.x - from.x) * (y - from.y) - (to.y - from.y) * (x - from.x);
}

/// Whether the quadrilateral, in clip space and in ring order, holds the rectangle around the middle of that half width
/// and half height, unclipped by depth.
bool holdsRectangle(std::array<Vec4, 4> ring, float halfWidth, float halfHeight)
{
    for (Vec4& corner : ring) {
        if (!(corner.w > 0.0f && corner.z >= 0.0f && corner.z <= corner.w))
            return false;
        corner *= 1.0f / corner.w;
    }
    bool left = true, right = true;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        for (const float x : {-halfWidth, halfWidth}) {
            for (const float y : {-halfHeight, halfHeight}) {
                const float side = measureSide(ring[i], ring[(i + 1) % ring.size()], x, y);
                left &= side > 0.0f;
                right &= side < 0.0f;
            }
        }
    }
    return left || right;
}

} // namespace

void FrameHistory::skipFrames()
{
    ++m_gap;
    m_queried = false;
    m_context.slots().skipFrames();
}

CarriedPicture FrameHistory::findCarried(const ImageHistory& picture) const
{
    if (isKnown(picture))
        return {m_queried, nullptr};
    return {true, picture.gap == m_gap ? picture.carrier : picture.owner};
}

void FrameHistory::noteQuad(const std::array<Vec3, 4>& corners, const Matrix& toClip)
{
    if (!isFollowing())
        return;
    m_hasQuad = true;
    std::transform(corners.begin(), corners.end(), m_quad.begin(), [&](const Vec3& corner) {
        return MatrixTransform(Vec4(corner.x, corner.y, corner.z, 1.0f), toClip);
    });
}

bool FrameHistory::takeCoverage(const VulkanRenderTarget& target)
{
    // Rounding may pull a corner in by this much of a pixel, which no sample is near enough to the edge to notice.
    constexpr float slack = 1.0f / 64.0f;
    const bool covers =
        m_hasQuad && holdsRectangle(m_quad, 1.0f - slack / static_cast<float>(target.getWidth()),
                                    1.0f - slack / static_cast<float>(target.getHeight()));
    m_hasQuad = false;
    return covers;
}

void FrameHistory::noteDraw(const VulkanProgram& program, VulkanRenderTarget& target, const Draw& draw)
{
    ImageHistory* color = target.getColorHistory();
    ImageHistory* depth = target.getDepthHistory();
    const bool covers = takeCoverage(target);
    CarriedPicture inputs = findCarried(program);
    if (!inputs.any && draw.testsDepth && depth)
        inputs = findCarried(*depth);
    if (color && inputs.any)
        *color = {color->owner, m_gap, false, inputs.target};
    else if (color && draw.replaces && draw.wholeViewport && covers)
        *color = {color->owner, m_gap, true, nullptr};
    if (depth && draw.testsDepth && inputs.any)
        *depth = {depth->owner, m_gap, false, inputs.target};
}

void FrameHistory::noteClear(VulkanRenderTarget& target, unsigned flags)
{
    if (ImageHistory* color = target.getColorHistory(); color && (flags & Renderer::ClearColor))
        *color = {color->owner, m_gap, true, nullptr};
    if (ImageHistory* depth = target.getDepthHistory(); depth && (flags & Renderer::ClearDepth))
        *depth = {depth->owner, m_gap, true, nullptr};
}

void FrameHistory::noteQuery()
{
    m_queried = isFollowing();
}

CarriedPicture FrameHistory::findCarried(const VulkanProgram& program) const
{
    CarriedPicture carried;
    for (const ShaderBinding& binding : program.getProgram().bindings) {
        const VulkanTexture* texture =
            binding.kind == ShaderBindingKind::Texture ? m_context.slots().getTexture(binding.slot) : nullptr;
        if (texture && !isKnown(texture->getHistory()))
            return findCarried(texture->getHistory());
        carried.any |= m_context.slots().isUnknown(binding);
    }
    return carried;
}

} // namespace helvantine
