// SPDX-License-Identifier: MIT
// Inverse and decomposition.
#include <helvantine/core/Matrix.h>

#include <cmath>

namespace helvantine
{

namespace
{

/// A determinant below this part of what rows of the same lengths can have is the rounding of a zero.
constexpr double s_singular = 1e-14;

/// The six determinants of the 2 by 2 blocks in two rows.
struct Minors
{
    double d01, d02, d03, d12, d13, d23;

    Minors(const float* a, const float* b)
        : d01(of(a, b, 0, 1)), d02(of(a, b, 0, 2)), d03(of(a, b, 0, 3)), d12(of(a, b, 1, 2)),
          d13(of(a, b, 1, 3)), d23(of(a, b, 2, 3))
    {
    }

    static double of(const float* a, const float* b, int i, int j)
    {
        return double(a[i]) * b[j] - double(a[j]) * b[i];
    }
};

double getLargestDeterminant(const Matrix& m)
{
    double product = 1.0;
    for (const auto& row : m.m) {
        product *= std::sqrt(double(row[0]) * row[0] + double(row[1]) * row[1] + double(row[2]) * row[2] +
                             double(row[3]) * row[3]);
    }
    return product;
}

bool isFinite(const Matrix& m)
{
    for (const auto& row : m.m) {
        for (float value : row) {
            if (!std::isfinite(value))
                return false;
        }
    }
    return true;
}

Vec3 getRow(const Matrix& m, int row)
{
    return {m[row][0], m[row][1], m[row][2]};
}

} // namespace

bool MatrixInverse(Matrix* out, const Matrix& m)
{
    const Minors s(m[0], m[1]);
    const Minors c(m[2], m[3]);
    const double determinant =
        s.d01 * c.d23 - s.d02 * c.d13 + s.d03 * c.d12 + s.d12 * c.d03 - s.d13 * c.d02 + s.d23 * c.d01;
    if (!(std::abs(determinant) > s_singular * getLargestDeterminant(m))) {
        *out = Matrix();
        return false;
    }

    const double f = 1.0 / determinant;
    Matrix result;
    for (int i = 0; i < 4; ++i) {
        // The columns that remain without column i, with the sign of the cofactor.
        const double sign = i % 2 == 0 ? f : -f;
        const int j = i == 0 ? 1 : 0, k = i <= 1 ? 2 : 1, l = i == 3 ? 2 : 3;
        const auto cofactor = [&](const float* row, const float* a, const float* b) {
            return row[j] * Minors::of(a, b, k, l) - row[k] * Minors::of(a, b, j, l) +
                   row[l] * Minors::of(a, b, j, k);
        };
        result[i][0] = static_cast<float>(sign * cofactor(m[1], m[2], m[3]));
        result[i][1] = static_cast<float>(-sign * cofactor(m[0], m[2], m[3]));
        result[i][2] = static_cast<float>(sign * cofactor(m[3], m[0], m[1]));
        result[i][3] = static_cast<float>(-sign * cofactor(m[2], m[0], m[1]));
    }
    const bool valid = isFinite(result);
    *out = valid ? result : Matrix();
    return valid;
}

Matrix MatrixInverse(const Matrix& m)
{
    Matrix result;
    MatrixInverse(&result, m);
    return result;
}

bool MatrixDecompose(const Matrix& m, Vec3& position, Vec3& scale, Quat& rotation)
{
    Vec3 x = normalize(getRow(m, 0));
    const Vec3 y = normalize(getRow(m, 1));
    const Vec3 z = normalize(getRow(m, 2));
    const float handedness = dot(x, cross(y, z)) < 0.0f ? -1.0f : 1.0f;
    position = MatrixGetTranslation(m);
    scale = {handedness * length(getRow(m, 0)), length(getRow(m, 1)), length(getRow(m, 2))};
    rotation = Quat();

    // Shear goes: y is made square to x, and z to both.
    x *= handedness;
    const Vec3 squareY = normalize(y - x * dot(x, y));
    if (x == Vec3() || squareY == Vec3() || z == Vec3())
        return false;
    const Vec3 squareZ = cross(x, squareY);
    rotation = QuatFromMatrix({{{x.x, x.y, x.z, 0},
                                {squareY.x, squareY.y, squareY.z, 0},
                                {squareZ.x, squareZ.y, squareZ.z, 0},
                                {0, 0, 0, 1}}});
    return true;
}

} // namespace helvantine
