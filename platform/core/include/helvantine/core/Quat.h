// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>
#include <helvantine/core/Vec3.h>

namespace helvantine
{

struct Matrix;

/// A rotation as a unit quaternion; identity by default. q and -q are the same rotation.
struct Quat
{
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 1.0f;

    constexpr Quat() = default;
    constexpr Quat(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}

    constexpr bool operator==(const Quat&) const = default;
    constexpr Quat operator-() const { return {-x, -y, -z, -w}; }
};
static_assert(sizeof(Quat) == 16);

constexpr float dot(const Quat& a, const Quat& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

/// Unit length; zero gives identity.
HELVANTINE_CORE_API Quat normalize(const Quat& q);

/// First the rotation a, then b, as MatrixMultiply does.
HELVANTINE_CORE_API Quat QuatMultiply(const Quat& a, const Quat& b);
HELVANTINE_CORE_API Quat QuatConjugate(const Quat& q); ///< the inverse of a unit quaternion

/// `axis` need not have unit length; a zero axis gives identity.
HELVANTINE_CORE_API Quat QuatFromAxisAngle(const Vec3& axis, float radians);
/// The rotation of a matrix whose upper three rows are orthonormal.
HELVANTINE_CORE_API Quat QuatFromMatrix(const Matrix& m);

/// From a at t = 0 to b at t = 1 at constant speed on the shorter arc.
HELVANTINE_CORE_API Quat QuatSlerp(const Quat& a, const Quat& b, float t);

/// The angles in radians for which RotateX(pitch) · RotateY(yaw) · RotateZ(roll) is the rotation. Where the
/// yaw is a right angle, pitch and roll turn about one axis: then roll is 0. With `inOwnPlane`, each function
/// gives instead the angle by which the rotation turns one axis within the plane of the turn: the y axis for
/// pitch, the z axis for yaw, the x axis for roll.
HELVANTINE_CORE_API float QuatGetPitch(const Quat& q, bool inOwnPlane);
HELVANTINE_CORE_API float QuatGetYaw(const Quat& q, bool inOwnPlane);
HELVANTINE_CORE_API float QuatGetRoll(const Quat& q, bool inOwnPlane);

} // namespace helvantine
