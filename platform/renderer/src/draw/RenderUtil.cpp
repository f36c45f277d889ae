// SPDX-License-Identifier: MIT
#include <helvantine/renderer/RenderUtil.h>

#include "draw/ShapeDrawer.h"
#include "draw/ShapeVertices.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace helvantine
{

RenderUtil* g_renderUtil = nullptr;

namespace
{

constexpr float pi = std::numbers::pi_v<float>;
constexpr int gridLines = 21;    ///< in each direction
constexpr int coneSegments = 16; ///< of an axis
constexpr float maxCircles = 64.0f;

/// The part of a line in front of a plane; false if there is none.
bool clipToFront(Vec3& start, Vec3& end, const Plane& plane)
{
    const float startSide = dot(plane, start);
    const float endSide = dot(plane, end);
    if (startSide < 0.0f && endSide < 0.0f)
        return false;
    if (startSide < 0.0f)
        start += (end - start) * (startSide / (startSide - endSide));
    else if (endSide < 0.0f)
        end = start + (end - start) * (startSide / (startSide - endSide));
    return true;
}

} // namespace

struct RenderUtil::Impl
{
    /// Draws the shapes collected and forgets them.
    void draw(const RenderUtil& owner, const Vec4& color, bool blend, float thickness = 1.0f)
    {
        drawer.draw(shapes, transform, viewport.get(), {color, thickness, blend, owner.m_depthTest != 0});
        shapes.clear();
    }

    ShapeVertices shapes;
    ShapeDrawer drawer;
    Matrix transform;
    SmartRef<Viewport> viewport;
    RenderUtil* previous = nullptr; ///< what g_renderUtil named before
};

RenderUtil::RenderUtil() : m_impl(std::make_unique<Impl>())
{
    m_impl->previous = g_renderUtil;
    g_renderUtil = this;
}

RenderUtil::~RenderUtil()
{
    // Not necessarily the latest: whoever was built after this one must not name it either.
    RenderUtil** link = &g_renderUtil;
    while (*link && *link != this)
        link = &(*link)->m_impl->previous;
    if (*link)
        *link = m_impl->previous;
}

void RenderUtil::setTransform(const Matrix& transform)
{
    m_impl->transform = transform;
}

void RenderUtil::setViewport(Viewport* viewport)
{
    m_impl->viewport = viewport;
}

void RenderUtil::drawLineGrid(float scale, float thickness, const Vec4& color, bool blend)
{
    const float reach = scale * float(gridLines - 1) / 2.0f;
    for (int i = 0; i < gridLines; ++i) {
        const float at = scale * float(i) - reach;
        m_impl->shapes.addLine({at, 0.0f, -reach}, {at, 0.0f, reach});
        m_impl->shapes.addLine({-reach, 0.0f, at}, {reach, 0.0f, at});
    }
    m_impl->draw(*this, color, blend, thickness);
}

void RenderUtil::drawLineRect(const Vec3& a, const Vec3& b, const Vec3& c, const Vec3& d, const Vec4& color,
                              bool blend)
{
    m_impl->shapes.addLine(a, b);
    m_impl->shapes.addLine(b, c);
    m_impl->shapes.addLine(c, d);
    m_impl->shapes.addLine(d, a);
    m_impl->draw(*this, color, blend);
}

void RenderUtil::drawLineBoundingBox(const AxisAlignedBox& box, const Vec4& color, bool blend)
{
    if (box.isEmpty())
        return;
    constexpr int cornersAround[] = {0, 1, 3, 2}; // bit 0: maximum of x, bit 1: of z
    const auto getCorner = [&box](int corner, float y) {
        return Vec3{corner & 1 ? box.maximum.x : box.minimum.x, y,
                    corner & 2 ? box.maximum.z : box.minimum.z};
    };
    for (int i = 0; i < 4; ++i) {
        const int here = cornersAround[i];
        const int next = cornersAround[(i + 1) % 4];
        for (const float y : {box.minimum.y, box.maximum.y})
            m_impl->shapes.addLine(getCorner(here, y), getCorner(next, y));
        m_impl->shapes.addLine(getCorner(here, box.minimum.y), getCorner(here, box.maximum.y));
    }
    m_impl->draw(*this, color, blend);
}

void RenderUtil::drawLineBoundingSphere(float radius, float circles, float segments, const Vec4& color,
                                        bool blend)
{
    // Half of the circles go through the poles, the others lie level between them.
    const int count = circles > 0.0f ? static_cast<int>(std::min(circles, maxCircles)) : 0;
    const int meridians = (count + 1) / 2;
    const int levels = count - meridians;
    for (int i = 0; i < meridians; ++i) {
        const float turn = pi * float(i) / float(meridians);
        const Vec3 across{radius * std::cos(turn), 0.0f, radius * std::sin(turn)};
        m_impl->shapes.addCircle({{}, across, {0.0f, radius, 0.0f}}, limitSegments(segments));
    }
    for (int i = 0; i < levels; ++i) {
        const float latitude = pi * (float(i + 1) / float(levels + 1) - 0.5f);
        const float ring = radius * std::cos(latitude);
        m_impl->shapes.addCircle(
            {{0.0f, radius * std::sin(latitude), 0.0f}, {ring, 0.0f, 0.0f}, {0.0f, 0.0f, ring}},
            limitSegments(segments));
    }
    m_impl->draw(*this, color, blend);
}

void RenderUtil::drawQuad(const Vec3& origin, const Vec3& side1, const Vec3& side2, const Vec4& color)
{
    const Vec3 opposite = origin + side1 + side2;
    m_impl->shapes.addTriangle(origin, origin + side1, opposite);
    m_impl->shapes.addTriangle(origin, opposite, origin + side2);
    m_impl->draw(*this, color, true);
}

void RenderUtil::drawTri(const Vec3& origin, const Vec3& side1, const Vec3& side2, const Vec4& color)
{
    m_impl->shapes.addTriangle(origin, origin + side1, origin + side2);
    m_impl->draw(*this, color, true);
}

void RenderUtil::drawAxis(const Vec3& origin, const Vec3& axis, const Vec3& other1, const Vec3& other2,
                          float coneRadius, float coneStart, const Vec4& color)
{
    const Vec3 tip = origin + axis;
    const Circle base{origin + axis * coneStart, other1 * coneRadius, other2 * coneRadius};
    m_impl->shapes.addLine(origin, base.origin);
    for (int i = 0; i < coneSegments; ++i) {
        const Vec3 from = base.getPoint(2.0f * pi * float(i) / coneSegments);
        const Vec3 to = base.getPoint(2.0f * pi * float(i + 1) / coneSegments);
        m_impl->shapes.addTriangle(tip, from, to);
        m_impl->shapes.addTriangle(base.origin, from, to);
    }
    m_impl->draw(*this, color, true);
}

void RenderUtil::drawCircle(const Vec3& origin, const Vec3& axis1, const Vec3& axis2, int segments,
                            const Vec4& color)
{
    m_impl->shapes.addCircle({origin, axis1, axis2}, limitSegments(float(segments)));
    m_impl->draw(*this, color, true);
}

void RenderUtil::drawCircleHalf(const Vec3& origin, const Vec3& axis1, const Vec3& axis2, int segments,
                                const Vec4& color, const Plane& plane)
{
    const Circle circle{origin, axis1, axis2};
    const int count = limitSegments(float(segments));
    for (int i = 0; i < count; ++i) {
        Vec3 start = circle.getPoint(2.0f * pi * float(i) / float(count));
        Vec3 end = circle.getPoint(2.0f * pi * float(i + 1) / float(count));
        if (clipToFront(start, end, plane))
            m_impl->shapes.addLine(start, end);
    }
    m_impl->draw(*this, color, true);
}

void RenderUtil::drawCamem(const Vec3& origin, const Vec3& normal, const Vec3& start, int segments,
                           const Vec4& color, float angle)
{
    const Vec3 unit = normalize(normal);
    const Vec3 level = start - unit * dot(unit, start);
    const Circle circle{origin + (start - level), level, cross(unit, level)};
    const int count = limitSegments(float(segments));
    for (int i = 0; i < count; ++i)
        m_impl->shapes.addTriangle(origin, circle.getPoint(angle * float(i) / float(count)),
                                   circle.getPoint(angle * float(i + 1) / float(count)));
    m_impl->draw(*this, color, true);
}

} // namespace helvantine
