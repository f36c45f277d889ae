// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec2.h>
#include <helvantine/core/Vec3.h>

#include <span>
#include <vector>

namespace helvantine
{

/// A corner of a triangle, or of the strip of pixels that a line becomes.
struct ShapeVertex
{
    Vec3 start; ///< the corner itself, or where its line starts
    Vec3 end;   ///< where its line ends
    Vec2
        corner; ///< x: 0 at the start of the line, 1 at its end; y: -1 or 1, the side of the line, 0 for a corner
};
static_assert(sizeof(ShapeVertex) == 32);

/// The ends of two vectors from the origin, by a full turn from the first to the second and on.
struct Circle
{
    Vec3 origin;
    Vec3 axis1;
    Vec3 axis2;

    Vec3 getPoint(float radians) const;
};

/// Lines and triangles of one draw, as a list of triangles. Keeps its memory from draw to draw.
class ShapeVertices
{
public:
    static constexpr int maxSegments = 512; ///< of a circle

    void clear() { m_vertices.clear(); }
    std::span<const ShapeVertex> get() const { return m_vertices; }

    /// A line covers its first pixel and leaves its last one to the line that goes on from there.
    void addLine(const Vec3& start, const Vec3& end);
    void addTriangle(const Vec3& a, const Vec3& b, const Vec3& c);
    void addCircle(const Circle& circle, int segments);

private:
    std::vector<ShapeVertex> m_vertices;
};

/// The number of segments that a circle gets for a wish: 3 to maxSegments.
int limitSegments(float segments);

} // namespace helvantine
