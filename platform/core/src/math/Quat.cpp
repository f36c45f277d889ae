// SPDX-License-Identifier: MIT
#include <helvantine/core/Quat.h>

#include "math/QuatArc.h"

#include <helvantine/core/Matrix.h>

#include <cmath>

namespace helvantine
{

namespace
{

/// Below this cosine the yaw is a right angle, and pitch and roll can't be told apart.
constexpr float s_gimbalLock = 1e-5f;

} // namespace

Quat normalize(const Quat& q)
{
    const double size =
        std::sqrt(double(q.x) * q.x + double(q.y) * q.y + double(q.z) * q.z + double(q.w) * q.w);
    if (!(size > 0.0))
        return {};
    return {float(q.x / size), float(q.y / size), float(q.z / size), float(q.w / size)};
}

Quat QuatMultiply(const Quat& a, const Quat& b)
{
    return {b.w * a.x + b.x * a.w + b.y * a.z - b.z * a.y, b.w * a.y - b.x * a.z + b.y * a.w + b.z * a.x,
            b.w * a.z + b.x * a.y - b.y * a.x + b.z * a.w, b.w * a.w - b.x * a.x - b.y * a.y - b.z * a.z};
}

Quat QuatConjugate(const Quat& q)
{
    return {-q.x, -q.y, -q.z, q.w};
}

Quat QuatFromAxisAngle(const Vec3& axis, float radians)
{
    const Vec3 unit = normalize(axis);
    if (unit == Vec3())
        return {};
    const Vec3 v = unit * std::sin(radians * 0.5f);
    return {v.x, v.y, v.z, std::cos(radians * 0.5f)};
}

Quat QuatFromMatrix(const Matrix& m)
{
    // Each case is the quaternion times four times its largest component.
    const float trace = m[0][0] + m[1][1] + m[2][2];
    const float x = m[1][2] - m[2][1], y = m[2][0] - m[0][2], z = m[0][1] - m[1][0];
    if (trace > 0.0f)
        return normalize(Quat(x, y, z, 1 + trace));
    if (m[0][0] >= m[1][1] && m[0][0] >= m[2][2])
        return normalize(Quat(1 + m[0][0] - m[1][1] - m[2][2], m[0][1] + m[1][0], m[0][2] + m[2][0], x));
    if (m[1][1] >= m[2][2])
        return normalize(Quat(m[0][1] + m[1][0], 1 - m[0][0] + m[1][1] - m[2][2], m[1][2] + m[2][1], y));
    return normalize(Quat(m[0][2] + m[2][0], m[1][2] + m[2][1], 1 - m[0][0] - m[1][1] + m[2][2], z));
}

Quat QuatSlerp(const Quat& a, const Quat& b, float t)
{
    return interpolateArc(a, dot(a, b) < 0.0f ? -b : b, t);
}

float QuatGetPitch(const Quat& q, bool inOwnPlane)
{
    const Matrix m = MatrixFromQuat(q);
    if (inOwnPlane)
        return std::atan2(m[1][2], m[1][1]);
    if (std::hypot(m[0][0], m[0][1]) < s_gimbalLock)
        return m[0][2] < 0.0f ? std::atan2(m[1][0], m[1][1]) : std::atan2(-m[1][0], m[1][1]);
    return std::atan2(m[1][2], m[2][2]);
}

float QuatGetYaw(const Quat& q, bool inOwnPlane)
{
    const Matrix m = MatrixFromQuat(q);
    return inOwnPlane ? std::atan2(m[2][0], m[2][2]) : std::atan2(-m[0][2], std::hypot(m[0][0], m[0][1]));
}

float QuatGetRoll(const Quat& q, bool inOwnPlane)
{
    const Matrix m = MatrixFromQuat(q);
    if (!inOwnPlane && std::hypot(m[0][0], m[0][1]) < s_gimbalLock)
        return 0.0f;
    return std::atan2(m[0][1], m[0][0]);
}

} // namespace helvantine
