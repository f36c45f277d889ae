// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec3.h>

namespace helvantine
{

/// The points where a·x + b·y + c·z + d = 0. The normal (a, b, c) need not have unit length.
struct Plane
{
    float a = 0.0f;
    float b = 0.0f;
    float c = 0.0f;
    float d = 0.0f;

    constexpr Plane() = default;
    constexpr Plane(float a_, float b_, float c_, float d_) : a(a_), b(b_), c(c_), d(d_) {}
    constexpr Plane(const Vec3& normal, float d_) : a(normal.x), b(normal.y), c(normal.z), d(d_) {}

    constexpr bool operator==(const Plane&) const = default;

    constexpr Vec3 getNormal() const { return {a, b, c}; }
};
static_assert(sizeof(Plane) == 16);

/// Above 0 on the side that the normal points to; a distance if the normal has unit length.
constexpr float dot(const Plane& plane, const Vec3& point)
{
    return plane.a * point.x + plane.b * point.y + plane.c * point.z + plane.d;
}

} // namespace helvantine
