// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>
#include <helvantine/core/Plane.h>
#include <helvantine/core/Quat.h>
#include <helvantine/core/Rect.h>
#include <helvantine/core/Vec3.h>
#include <helvantine/core/Vec4.h>

namespace helvantine
{

/// Four rows of four floats, identity by default: `matrix[row][column]`, translation in row 3.
///
/// Laws of the functions below:
/// - Left-handed space, row vectors (a point is multiplied from the left), clip depth 0 to 1, radians.
/// - Every function that yields a matrix has two forms, one with an out pointer first, one by value. `out`
///   is not null and may be one of the arguments.
/// - A divisor that would be 0 (an extent, an aspect, the tangent of a field of view) counts as 1e-6.
struct Matrix
{
    float m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    constexpr float* operator[](int row) { return m[row]; }
    constexpr const float* operator[](int row) const { return m[row]; }

    constexpr bool operator==(const Matrix&) const = default;
};
static_assert(sizeof(Matrix) == 64);

HELVANTINE_CORE_API void MatrixSetIdentity(Matrix* out);
HELVANTINE_CORE_API Matrix MatrixSetIdentity();

/// A point is transformed first by a, then by b.
HELVANTINE_CORE_API void MatrixMultiply(Matrix* out, const Matrix& a, const Matrix& b);
HELVANTINE_CORE_API Matrix MatrixMultiply(const Matrix& a, const Matrix& b);

HELVANTINE_CORE_API void MatrixTranspose(Matrix* out, const Matrix& m);
HELVANTINE_CORE_API Matrix MatrixTranspose(const Matrix& m);

/// Identity, and false, if m can't be inverted.
HELVANTINE_CORE_API bool MatrixInverse(Matrix* out, const Matrix& m);
HELVANTINE_CORE_API Matrix MatrixInverse(const Matrix& m);

HELVANTINE_CORE_API void MatrixTranslation(Matrix* out, const Vec3& v);
HELVANTINE_CORE_API void MatrixTranslation(Matrix* out, float x, float y, float z);
HELVANTINE_CORE_API Matrix MatrixTranslation(const Vec3& v);
HELVANTINE_CORE_API Matrix MatrixTranslation(float x, float y, float z);

HELVANTINE_CORE_API void MatrixScaling(Matrix* out, const Vec3& v);
HELVANTINE_CORE_API void MatrixScaling(Matrix* out, float x, float y, float z);
HELVANTINE_CORE_API Matrix MatrixScaling(const Vec3& v);
HELVANTINE_CORE_API Matrix MatrixScaling(float x, float y, float z);

HELVANTINE_CORE_API void MatrixRotateX(Matrix* out, float radians);
HELVANTINE_CORE_API Matrix MatrixRotateX(float radians);
HELVANTINE_CORE_API void MatrixRotateY(Matrix* out, float radians);
HELVANTINE_CORE_API Matrix MatrixRotateY(float radians);
HELVANTINE_CORE_API void MatrixRotateZ(Matrix* out, float radians);
HELVANTINE_CORE_API Matrix MatrixRotateZ(float radians);

/// `axis` need not have unit length; a zero axis gives identity.
HELVANTINE_CORE_API void MatrixFromAxisAngle(Matrix* out, const Vec3& axis, float radians);
HELVANTINE_CORE_API Matrix MatrixFromAxisAngle(const Vec3& axis, float radians);
HELVANTINE_CORE_API void MatrixFromQuat(Matrix* out, const Quat& q);
HELVANTINE_CORE_API Matrix MatrixFromQuat(const Quat& q);

/// The field of view is vertical.
HELVANTINE_CORE_API void MatrixPerspectiveFov(Matrix* out, float fov, float aspect, float nearZ, float farZ);
HELVANTINE_CORE_API Matrix MatrixPerspectiveFov(float fov, float aspect, float nearZ, float farZ);

/// Pixel space: x from 0 to width runs left to right, y from 0 to height top to bottom, so a point from
/// MatrixProject lands on its pixel. The mirrored y turns windings: draw without culling.
HELVANTINE_CORE_API void MatrixOrthographic(Matrix* out, float width, float height, float nearZ, float farZ);
HELVANTINE_CORE_API Matrix MatrixOrthographic(float width, float height, float nearZ, float farZ);
/// A box in view space, y up.
HELVANTINE_CORE_API void MatrixOrthographic(Matrix* out, float left, float right, float bottom, float top,
                                            float nearZ, float farZ);
HELVANTINE_CORE_API Matrix MatrixOrthographic(float left, float right, float bottom, float top, float nearZ,
                                              float farZ);

/// A view matrix, z towards the target. Where `up` runs along the view direction, the z axis, or else the x
/// axis, serves as up; an eye at its target doesn't rotate.
HELVANTINE_CORE_API void MatrixLookAt(Matrix* out, const Vec3& eye, const Vec3& target, const Vec3& up);
HELVANTINE_CORE_API Matrix MatrixLookAt(const Vec3& eye, const Vec3& target, const Vec3& up);

/// The mirror image at a plane of any normal length; identity for a zero normal.
HELVANTINE_CORE_API void MatrixReflect(Matrix* out, const Plane& plane);
HELVANTINE_CORE_API Matrix MatrixReflect(const Plane& plane);

/// Where a point appears within `rect`: x and y there, z the depth. `m` is the whole chain to clip space.
/// False if the point isn't in front of the eye; its depth then is below 0.
HELVANTINE_CORE_API bool MatrixProject(const Matrix& m, const Rect& rect, const Vec3& point, Vec3& out);
/// The inverse of MatrixProject. False, with `out` untouched, if there is no such point.
HELVANTINE_CORE_API bool MatrixUnproject(const Matrix& m, const Rect& rect, const Vec3& point, Vec3& out);
HELVANTINE_CORE_API bool MatrixUnproject(const Matrix& view, const Matrix& projection, const Rect& rect,
                                         const Vec3& point, Vec3& out);

/// By the upper three rows and columns only; the length isn't restored.
HELVANTINE_CORE_API Vec3 MatrixTransformNormal(const Vec3& v, const Matrix& m);
/// A point, divided by the resulting w; with w 0 it isn't divided.
HELVANTINE_CORE_API Vec3 MatrixTransformCoord(const Vec3& v, const Matrix& m);
HELVANTINE_CORE_API Vec4 MatrixTransform(const Vec4& v, const Matrix& m);

HELVANTINE_CORE_API Vec3 MatrixGetTranslation(const Matrix& m);
/// Row 2 at unit length; (0, 0, 1) if the row is zero.
HELVANTINE_CORE_API Vec3 MatrixGetForward(const Matrix& m);
HELVANTINE_CORE_API Vec3 MatrixGetCameraPosition(const Matrix& view);

/// Splits m into scale · rotation · translation. A mirrored matrix gets a negative x scale, shear is dropped.
/// False if a scale is 0: the rotation then is identity, position and scale are valid.
HELVANTINE_CORE_API bool MatrixDecompose(const Matrix& m, Vec3& position, Vec3& scale, Quat& rotation);

} // namespace helvantine
