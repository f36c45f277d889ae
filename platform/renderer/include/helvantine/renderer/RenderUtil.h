// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/AxisAlignedBox.h>
#include <helvantine/core/Matrix.h>
#include <helvantine/core/Plane.h>
#include <helvantine/core/Vec3.h>
#include <helvantine/core/Vec4.h>
#include <helvantine/renderer/Api.h>

#include <memory>

namespace helvantine
{

class Viewport;

/// Draws lines and simple shapes: the editor's grid, bounds and gizmos.
///
/// Needs setTransform before anything is drawn. The last argument `blend` of an operation blends by alpha
/// when true; operations without it always do. Points are in the space that the transform starts from. Without
/// a renderer nothing is drawn.
class HELVANTINE_RENDERER_API RenderUtil
{
public:
    RenderUtil();  ///< becomes g_renderUtil
    ~RenderUtil(); ///< puts the g_renderUtil before it back
    RenderUtil(const RenderUtil&) = delete;
    RenderUtil& operator=(const RenderUtil&) = delete;

    /// 1: depth test on. 0: draw over everything. Deliberately a plain byte and the first field: the editor
    /// clears it while it draws its aids.
    unsigned char m_depthTest = 1;

    void setTransform(const Matrix& transform); ///< the whole chain to clip space
    void setViewport(Viewport* viewport);       ///< keeps a reference; null means the target's own

    /// 21 by 21 lines in the plane y = 0, scale apart. thickness in pixels.
    void drawLineGrid(float scale, float thickness, const Vec4& color, bool blend);
    void drawLineRect(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, const Vec4& color,
                      bool blend);
    void drawLineBoundingBox(const AxisAlignedBox& box, const Vec4& color,
                             bool blend); ///< empty draws nothing
    /// Around the origin. Half of the circles go through the poles, the others lie level between them.
    void drawLineBoundingSphere(float radius, float circles, float segments, const Vec4& color, bool blend);

    void drawQuad(const Vec3& origin, const Vec3& side1, const Vec3& side2, const Vec4& color);
    void drawTri(const Vec3& origin, const Vec3& side1, const Vec3& side2,
                 const Vec4& color); ///< half of the quad
    /// A line from origin along axis with a cone at its end: coneRadius and the cone's begin as fractions of
    /// axis; other1 and other2 span the cone's base.
    void drawAxis(const Vec3& origin, const Vec3& axis, const Vec3& other1, const Vec3& other2,
                  float coneRadius, float coneStart, const Vec4& color);
    void drawCircle(const Vec3& origin, const Vec3& axis1, const Vec3& axis2, int segments,
                    const Vec4& color);
    /// The half of the circle in front of the plane.
    void drawCircleHalf(const Vec3& origin, const Vec3& axis1, const Vec3& axis2, int segments,
                        const Vec4& color, const Plane& plane);
    /// A filled sector from the vector start (relative to origin) by angle radians about normal.
    void drawCamem(const Vec3& origin, const Vec3& normal, const Vec3& start, int segments, const Vec4& color,
                   float angle);

    struct Impl;

private:
    std::unique_ptr<Impl> m_impl;
};

/// The RenderUtil built last; null without one.
extern HELVANTINE_RENDERER_API RenderUtil* g_renderUtil;

} // namespace helvantine
