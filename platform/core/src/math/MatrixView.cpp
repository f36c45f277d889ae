// SPDX-License-Identifier: MIT
// Views and projections to clip space.
#include <helvantine/core/Matrix.h>

#include <cmath>
#include <initializer_list>

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

Matrix MatrixLookAt(const Vec3& eye, const Vec3& target, const Vec3& up)
{
    const Vec3 z = normalize(target - eye);
    if (z == Vec3())
        return MatrixTranslation(-eye);
    const Vec3 x = findSide(z, up);
    const Vec3 y = cross(z, x);
    return {{{x.x, y.x, z.x, 0},
             {x.y, y.y, z.y, 0},
             {x.z, y.z, z.z, 0},
             {-dot(x, eye), -dot(y, eye), -dot(z, eye), 1}}};
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
