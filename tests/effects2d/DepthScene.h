// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vector.h>
#include <helvantine/testsupport/Image.h>
#include <helvantine/timeline/FxContext.h>

namespace helvantine::test
{

/// A sphere on a floor before a wall: what a renderer of scenes would leave for effects that reckon with depth.
struct DepthScene
{
    static constexpr float farPlane = 60;
    static constexpr float fov = 60; ///< degrees

    DepthScene(unsigned width, unsigned height);

    float m_halfHeight; ///< of the frustum, at its far plane
    float m_halfWidth;
    Image m_surface;     ///< view-space normals (rgb) and depth (alpha)
    FxContext m_context; ///< as the camera would fill it

private:
    Vec4 look(Vec2 texCoord) const;
};

} // namespace helvantine::test
