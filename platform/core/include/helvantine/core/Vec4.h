// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec3.h>

namespace helvantine
{

/// Four floats without padding; zero by default. == compares exactly. Also a colour: red, green, blue, alpha.
struct Vec4
{
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 0.0f;

    constexpr Vec4() = default;
    constexpr Vec4(float x_, float y_, float z_, float w_) : x(x_), y(y_), z(z_), w(w_) {}
    constexpr Vec4(const Vec3& v, float w_) : x(v.x), y(v.y), z(v.z), w(w_) {}

    constexpr bool operator==(const Vec4&) const = default;

    constexpr Vec3 xyz() const { return {x, y, z}; }

    constexpr Vec4 operator-() const { return {-x, -y, -z, -w}; }
    constexpr Vec4& operator+=(const Vec4& v) { return *this = {x + v.x, y + v.y, z + v.z, w + v.w}; }
    constexpr Vec4& operator-=(const Vec4& v) { return *this = {x - v.x, y - v.y, z - v.z, w - v.w}; }
    constexpr Vec4& operator*=(const Vec4& v) { return *this = {x * v.x, y * v.y, z * v.z, w * v.w}; }
    constexpr Vec4& operator*=(float s) { return *this = {x * s, y * s, z * s, w * s}; }
    constexpr Vec4& operator/=(float s) { return *this = {x / s, y / s, z / s, w / s}; }
};
static_assert(sizeof(Vec4) == 16);

constexpr Vec4 operator+(Vec4 a, const Vec4& b)
{
    return a += b;
}
constexpr Vec4 operator-(Vec4 a, const Vec4& b)
{
    return a -= b;
}
/// By component.
constexpr Vec4 operator*(Vec4 a, const Vec4& b)
{
    return a *= b;
}
constexpr Vec4 operator*(Vec4 v, float s)
{
    return v *= s;
}
constexpr Vec4 operator*(float s, Vec4 v)
{
    return v *= s;
}
constexpr Vec4 operator/(Vec4 v, float s)
{
    return v /= s;
}

constexpr float dot(const Vec4& a, const Vec4& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

} // namespace helvantine
