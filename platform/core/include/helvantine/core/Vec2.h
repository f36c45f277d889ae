// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

namespace helvantine
{

/// Two floats without padding; zero by default. == compares exactly.
struct Vec2
{
    float x = 0.0f;
    float y = 0.0f;

    constexpr Vec2() = default;
    constexpr Vec2(float x_, float y_) : x(x_), y(y_) {}

    constexpr bool operator==(const Vec2&) const = default;

    constexpr Vec2 operator-() const { return {-x, -y}; }
    constexpr Vec2& operator+=(const Vec2& v) { return *this = {x + v.x, y + v.y}; }
    constexpr Vec2& operator-=(const Vec2& v) { return *this = {x - v.x, y - v.y}; }
    constexpr Vec2& operator*=(const Vec2& v) { return *this = {x * v.x, y * v.y}; }
    constexpr Vec2& operator*=(float s) { return *this = {x * s, y * s}; }
    constexpr Vec2& operator/=(float s) { return *this = {x / s, y / s}; }
};
static_assert(sizeof(Vec2) == 8);

constexpr Vec2 operator+(Vec2 a, const Vec2& b)
{
    return a += b;
}
constexpr Vec2 operator-(Vec2 a, const Vec2& b)
{
    return a -= b;
}
/// By component.
constexpr Vec2 operator*(Vec2 a, const Vec2& b)
{
    return a *= b;
}
constexpr Vec2 operator*(Vec2 v, float s)
{
    return v *= s;
}
constexpr Vec2 operator*(float s, Vec2 v)
{
    return v *= s;
}
constexpr Vec2 operator/(Vec2 v, float s)
{
    return v /= s;
}

constexpr float dot(const Vec2& a, const Vec2& b)
{
    return a.x * b.x + a.y * b.y;
}

inline float length(const Vec2& v)
{
    return std::sqrt(dot(v, v));
}

/// Unit length; zero stays zero.
inline Vec2 normalize(const Vec2& v)
{
    const float size = length(v);
    return size > 0.0f ? v / size : Vec2();
}

} // namespace helvantine
