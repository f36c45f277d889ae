// SPDX-License-Identifier: MIT
#include <helvantine/core/Matrix.h>

#include <cmath>
#include <utility>

namespace helvantine
{

void MatrixSetIdentity(Matrix* out)
{
    *out = Matrix();
}

Matrix MatrixSetIdentity()
{
    return {};
}

Matrix MatrixMultiply(const Matrix& a, const Matrix& b)
{
    Matrix result;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            result[row][column] = a[row][0] * b[0][column] + a[row][1] * b[1][column] +
                                  a[row][2] * b[2][column] + a[row][3] * b[3][column];
        }
    }
    return result;
}

void MatrixMultiply(Matrix* out, const Matrix& a, const Matrix& b)
{
    *out = MatrixMultiply(a, b);
}

Matrix MatrixTranspose(const Matrix& m)
{
    Matrix result;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column)
            result[row][column] = m[column][row];
    }
    return result;
}

void MatrixTranspose(Matrix* out, const Matrix& m)
{
    *out = MatrixTranspose(m);
}

Matrix MatrixTranslation(float x, float y, float z)
{
    Matrix result;
    result[3][0] = x;
    result[3][1] = y;
    result[3][2] = z;
    return result;
}

Matrix MatrixTranslation(const Vec3& v)
{
    return MatrixTranslation(v.x, v.y, v.z);
}

void MatrixTranslation(Matrix* out, const Vec3& v)
{
    *out = MatrixTranslation(v);
}

void MatrixTranslation(Matrix* out, float x, float y, float z)
{
    *out = MatrixTranslation(x, y, z);
}

Matrix MatrixScaling(float x, float y, float z)
{
    Matrix result;
    result[0][0] = x;
    result[1][1] = y;
    result[2][2] = z;
    return result;
}

Matrix MatrixScaling(const Vec3& v)
{
    return MatrixScaling(v.x, v.y, v.z);
}

void MatrixScaling(Matrix* out, const Vec3& v)
{
    *out = MatrixScaling(v);
}

void MatrixScaling(Matrix* out, float x, float y, float z)
{
    *out = MatrixScaling(x, y, z);
}

Matrix MatrixRotateX(float radians)
{
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {{{1, 0, 0, 0}, {0, c, s, 0}, {0, -s, c, 0}, {0, 0, 0, 1}}};
}

void MatrixRotateX(Matrix* out, float radians)
{
    *out = MatrixRotateX(radians);
}

Matrix MatrixRotateY(float radians)
{
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {{{c, 0, -s, 0}, {0, 1, 0, 0}, {s, 0, c, 0}, {0, 0, 0, 1}}};
}

void MatrixRotateY(Matrix* out, float radians)
{
    *out = MatrixRotateY(radians);
}

Matrix MatrixRotateZ(float radians)
{
    const float c = std::cos(radians);
    const float s = std::sin(radians);
    return {{{c, s, 0, 0}, {-s, c, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
}

void MatrixRotateZ(Matrix* out, float radians)
{
    *out = MatrixRotateZ(radians);
}

Matrix MatrixFromAxisAngle(const Vec3& axis, float radians)
{
    return MatrixFromQuat(QuatFromAxisAngle(axis, radians));
}

void MatrixFromAxisAngle(Matrix* out, const Vec3& axis, float radians)
{
    *out = MatrixFromAxisAngle(axis, radians);
}

Matrix MatrixFromQuat(const Quat& q)
{
    const float xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z;
    const float xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
    const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
    return {{{1 - 2 * (yy + zz), 2 * (xy + wz), 2 * (xz - wy), 0},
             {2 * (xy - wz), 1 - 2 * (xx + zz), 2 * (yz + wx), 0},
             {2 * (xz + wy), 2 * (yz - wx), 1 - 2 * (xx + yy), 0},
             {0, 0, 0, 1}}};
}

void MatrixFromQuat(Matrix* out, const Quat& q)
{
    *out = MatrixFromQuat(q);
}

Matrix MatrixReflect(const Plane& plane)
{
    const Vec3 n = normalize(plane.getNormal());
    if (n == Vec3())
        return {};
    const float d = plane.d / length(plane.getNormal());
    return {{{1 - 2 * n.x * n.x, -2 * n.x * n.y, -2 * n.x * n.z, 0},
             {-2 * n.x * n.y, 1 - 2 * n.y * n.y, -2 * n.y * n.z, 0},
             {-2 * n.x * n.z, -2 * n.y * n.z, 1 - 2 * n.z * n.z, 0},
             {-2 * d * n.x, -2 * d * n.y, -2 * d * n.z, 1}}};
}

void MatrixReflect(Matrix* out, const Plane& plane)
{
    *out = MatrixReflect(plane);
}

Vec3 MatrixTransformNormal(const Vec3& v, const Matrix& m)
{
    return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0], v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1],
            v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2]};
}

Vec4 MatrixTransform(const Vec4& v, const Matrix& m)
{
    return {v.x * m[0][0] + v.y * m[1][0] + v.z * m[2][0] + v.w * m[3][0],
            v.x * m[0][1] + v.y * m[1][1] + v.z * m[2][1] + v.w * m[3][1],
            v.x * m[0][2] + v.y * m[1][2] + v.z * m[2][2] + v.w * m[3][2],
            v.x * m[0][3] + v.y * m[1][3] + v.z * m[2][3] + v.w * m[3][3]};
}

Vec3 MatrixTransformCoord(const Vec3& v, const Matrix& m)
{
    const Vec4 result = MatrixTransform(Vec4(v, 1.0f), m);
    return result.w == 0.0f ? result.xyz() : result.xyz() / result.w;
}

Vec3 MatrixGetTranslation(const Matrix& m)
{
    return {m[3][0], m[3][1], m[3][2]};
}

Vec3 MatrixGetForward(const Matrix& m)
{
    const Vec3 forward = normalize(Vec3(m[2][0], m[2][1], m[2][2]));
    return forward == Vec3() ? Vec3(0, 0, 1) : forward;
}

} // namespace helvantine
