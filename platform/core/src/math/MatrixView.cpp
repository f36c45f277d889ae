// SPDX-License-Identifier: MIT
// Views and projections to clip space.
#include <helvantine/core/Matrix.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace helvantine
{

namespace
{

/// How far, as a sine, up may lie from the view direction and still count as parallel to it.
constexpr float s_parallel = 1e-5f;

/// The x axis of a view along `forward`, a unit vector.
Vec3 findSide(const Vec3& forward, const Vec3& up)
{
    for (const Vec3& candidate : {normalize(up), Vec3(0, 0, 1), Vec3(1, 0, 0)}) {
        const Vec3 side = cross(candidate, forward);
        if (length(side) > s_parallel)
            return normalize(side);
    }
    return {1, 0, 0};
}

/// Coordinates that aren't finite numbers count as 0.
Vec3 keepFinite(const Vec3& v)
{
    const auto keep = [](float value) { return std::isfinite(value) ? value : 0.0f; };
    return {keep(v.x), keep(v.y), keep(v.z)};
}

/// The direction from one point to another, of length 1, or 0 if they are the same. In double: the difference may be
/// larger than a float.
Vec3 getDirection(const Vec3& from, const Vec3& to)
{
    const double x = double(to.x) - from.x, y = double(to.y) - from.y, z = double(to.z) - from.z;
    const double size = std::sqrt(x * x + y * y + z * z);
    return size > 0.0 ? Vec3(float(x / size), float(y / size), float(z / size)) : Vec3();
}

/// Where the origin lies on an axis that begins at `eye`.
float placeOrigin(const Vec3& axis, const Vec3& eye)
{
    constexpr double limit = std::numeric_limits<float>::max();
    const double place = -(double(axis.x) * eye.x + double(axis.y) * eye.y + double(axis.z) * eye.z);
    return static_cast<float>(std::clamp(place, -limit, limit));
}

float asDivisor(float value)
{
    return value == 0.0f ? 1e-6f : value;
}

} // namespace

Matrix MatrixPerspectiveFov(float fov, float aspect, float nearZ, float farZ)
{
    const float height = 1.0f / asDivisor(std::tan(fov * 0.5f));
    const float depth = farZ / asDivisor(farZ - nearZ);
    return {{{height / asDivisor(aspect), 0, 0, 0},
             {0, height, 0, 0},
             {0, 0, depth, 1},
             {0, 0, -nearZ * depth, 0}}};
}

void MatrixPerspectiveFov(Matrix* out, float fov, float aspect, float nearZ, float farZ)
{
    *out = MatrixPerspectiveFov(fov, aspect, nearZ, farZ);
}

Matrix MatrixOrthographic(float width, float height, float nearZ, float farZ)
{
    return MatrixOrthographic(0.0f, width, height, 0.0f, nearZ, farZ);
}

void MatrixOrthographic(Matrix* out, float width, float height, float nearZ, float farZ)
{
    *out = MatrixOrthographic(width, height, nearZ, farZ);
}

Matrix MatrixOrthographic(float left, float right, float bottom, float top, float nearZ, float farZ)
{
    const float width = asDivisor(right - left);
    const float height = asDivisor(top - bottom);
    const float depth = asDivisor(farZ - nearZ);
    return {{{2 / width, 0, 0, 0},
             {0, 2 / height, 0, 0},
             {0, 0, 1 / depth, 0},
             {-(left + right) / width, -(bottom + top) / height, -nearZ / depth, 1}}};
}

void MatrixOrthographic(Matrix* out, float left, float right, float bottom, float top, float nearZ,
                        float farZ)
{
    *out = MatrixOrthographic(left, right, bottom, top, nearZ, farZ);
}

Matrix MatrixLookAt(const Vec3& from, const Vec3& target, const Vec3& up)
{
    const Vec3 eye = keepFinite(from);
    const Vec3 z = getDirection(eye, keepFinite(target));
    if (z == Vec3())
        return MatrixTranslation(-eye);
    const Vec3 x = findSide(z, up);
    const Vec3 y = cross(z, x);
    return {{{x.x, y.x, z.x, 0},
             {x.y, y.y, z.y, 0},
             {x.z, y.z, z.z, 0},
             {placeOrigin(x, eye), placeOrigin(y, eye), placeOrigin(z, eye), 1}}};
}

void MatrixLookAt(Matrix* out, const Vec3& eye, const Vec3& target, const Vec3& up)
{
    *out = MatrixLookAt(eye, target, up);
}

Vec3 MatrixGetCameraPosition(const Matrix& view)
{
    return MatrixGetTranslation(MatrixInverse(view));
}

} // namespace helvantine
