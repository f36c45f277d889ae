// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

namespace helvantine
{

/// Three floats without padding; zero by default. == compares exactly.
struct Vec3
{
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;

    constexpr Vec3() = default;
    constexpr Vec3(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}

    constexpr bool operator==(const Vec3&) const = default;

    constexpr Vec3 operator-() const { return {-x, -y, -z}; }
    constexpr Vec3& operator+=(const Vec3& v) { return *this = {x + v.x, y + v.y, z + v.z}; }
    constexpr Vec3& operator-=(const Vec3& v) { return *this = {x - v.x, y - v.y, z - v.z}; }
    constexpr Vec3& operator*=(const Vec3& v) { return *this = {x * v.x, y * v.y, z * v.z}; }
    constexpr Vec3& operator*=(float s) { return *this = {x * s, y * s, z * s}; }
    constexpr Vec3& operator/=(float s) { return *this = {x / s, y / s, z / s}; }
};
static_assert(sizeof(Vec3) == 12);

constexpr Vec3 operator+(Vec3 a, const Vec3& b)
{
    return a += b;
}
constexpr Vec3 operator-(Vec3 a, const Vec3& b)
{
    return a -= b;
}
/// By component.
constexpr Vec3 operator*(Vec3 a, const Vec3& b)
{
    return a *= b;
}
constexpr Vec3 operator*(Vec3 v, float s)
{
    return v *= s;
}
constexpr Vec3 operator*(float s, Vec3 v)
{
    return v *= s;
}
constexpr Vec3 operator/(Vec3 v, float s)
{
    return v /= s;
}

constexpr float dot(const Vec3& a, const Vec3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

constexpr Vec3 cross(const Vec3& a, const Vec3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// In double, so that neither a tiny nor a huge vector loses its length.
inline float length(const Vec3& v)
{
    return static_cast<float>(std::sqrt(double(v.x) * v.x + double(v.y) * v.y + double(v.z) * v.z));
}

/// Unit length; zero stays zero.
inline Vec3 normalize(const Vec3& v)
{
    const double size = std::sqrt(double(v.x) * v.x + double(v.y) * v.y + double(v.z) * v.z);
    if (!(size > 0.0))
        return {};
    return {float(v.x / size), float(v.y / size), float(v.z / size)};
}

} // namespace helvantine
