// SPDX-License-Identifier: MIT
#include "draw/ShapeVertices.h"

#include <cmath>
#include <numbers>

namespace helvantine
{

Vec3 Circle::getPoint(float radians) const
{
    return origin + axis1 * std::cos(radians) + axis2 * std::sin(radians);
}

int limitSegments(float segments)
{
    if (!(segments > 3.0f)) // also for NaN
        return 3;
    return segments < float(ShapeVertices::maxSegments) ? static_cast<int>(segments)
                                                        : ShapeVertices::maxSegments;
}

void ShapeVertices::addLine(const Vec3& start, const Vec3& end)
{
    constexpr Vec2 corners[] = {{0, -1}, {0, 1}, {1, 1}, {0, -1}, {1, 1}, {1, -1}};
    for (const Vec2& corner : corners)
        m_vertices.push_back({start, end, corner});
}

void ShapeVertices::addTriangle(const Vec3& a, const Vec3& b, const Vec3& c)
{
    for (const Vec3& point : {a, b, c})
        m_vertices.push_back({point, point, {}});
}

void ShapeVertices::addCircle(const Circle& circle, int segments)
{
    const float step = 2.0f * std::numbers::pi_v<float> / float(segments);
    const Vec3 first = circle.getPoint(0.0f);
    Vec3 from = first;
    for (int i = 1; i <= segments; ++i) {
        const Vec3 to = i < segments ? circle.getPoint(float(i) * step) : first;
        addLine(from, to);
        from = to;
    }
}

} // namespace helvantine
