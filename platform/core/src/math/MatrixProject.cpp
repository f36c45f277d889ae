// SPDX-License-Identifier: MIT
#include <helvantine/core/Matrix.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace helvantine
{

bool MatrixProject(const Matrix& m, const Rect& rect, const Vec3& point, Vec3& out)
{
    const Vec4 clip = MatrixTransform(Vec4(point, 1.0f), m);
    const bool inFront = clip.w > 0.0f;
    const float size = std::max(std::abs(clip.w), std::numeric_limits<float>::min());
    const float w = clip.w < 0.0f ? -size : size;
    // Behind the eye the division by |w| keeps the depth below 0, by w it would exceed 1.
    out = {rect.x + (1 + clip.x / w) * rect.width / 2, rect.y + (1 - clip.y / w) * rect.height / 2,
           clip.z / size};
    return inFront;
}

bool MatrixUnproject(const Matrix& m, const Rect& rect, const Vec3& point, Vec3& out)
{
    Matrix inverse;
    if (rect.width == 0.0f || rect.height == 0.0f || !MatrixInverse(&inverse, m))
        return false;
    const Vec4 clip((point.x - rect.x) / rect.width * 2 - 1, 1 - (point.y - rect.y) / rect.height * 2,
                    point.z, 1.0f);
    const Vec4 result = MatrixTransform(clip, inverse);
    if (result.w == 0.0f)
        return false;
    out = result.xyz() / result.w;
    return true;
}

bool MatrixUnproject(const Matrix& view, const Matrix& projection, const Rect& rect, const Vec3& point,
                     Vec3& out)
{
    return MatrixUnproject(MatrixMultiply(view, projection), rect, point, out);
}

} // namespace helvantine
