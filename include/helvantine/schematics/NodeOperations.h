// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Text.h>
#include <helvantine/object/Property.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <string>

/// What the nodes of the catalogue compute. All arithmetic is in single precision where nothing else is said.
namespace helvantine::operations
{

/// A function of numbers, for each component of 4-vectors.
template <class Function>
struct PerComponent
{
    template <class... V>
    static Vec4 compute(const V&... v)
    {
        return {Function::compute(v.x...), Function::compute(v.y...), Function::compute(v.z...),
                Function::compute(v.w...)};
    }
};

struct Add
{
    static float compute(float a, float b) { return a + b; }
};

struct Subtract
{
    static float compute(float a, float b) { return a - b; }
};

struct Multiply
{
    static float compute(float a, float b) { return a * b; }
};

/// By zero, by negative zero too, gives 0: no division makes an infinity of a zero.
struct Divide
{
    static float compute(float a, float b) { return b == 0.0f ? 0.0f : a / b; }
};

/// The upper bound has the last word; NaN passes.
struct Clamp
{
    static float compute(float value, float low, float high)
    {
        const float raised = low > value ? low : value;
        return raised > high ? high : raised;
    }
};

struct Absolute
{
    static float compute(float value)
    {
        return std::bit_cast<float>(std::bit_cast<std::uint32_t>(value) & 0x7fffffffu);
    }
};

/// The order of the sum decides its last bit.
struct Distance
{
    static float compute(const Vec3& a, const Vec3& b)
    {
        const Vec3 d = a - b;
        const float yx = d.y * d.y + d.x * d.x;
        return static_cast<float>(std::sqrt(static_cast<double>(yx + d.z * d.z)));
    }
};

struct ToDegrees
{
    static float compute(float radians) { return radians * std::bit_cast<float>(0x42652EE0u); }
};

struct ToRadians
{
    static float compute(float degrees) { return degrees * std::bit_cast<float>(0x3C8EFA35u); }
};

/// Of radians, in double precision.
struct Sine
{
    static float compute(float angle) { return static_cast<float>(std::sin(static_cast<double>(angle))); }
};

struct Cosine
{
    static float compute(float angle) { return static_cast<float>(std::cos(static_cast<double>(angle))); }
};

struct Same
{
    template <class T>
    static const T& compute(const T& value)
    {
        return value;
    }
};

template <class Vector>
struct Pack
{
    template <class... Float>
    static Vector compute(Float... components)
    {
        return {components...};
    }
};

struct Split
{
    static std::array<float, 2> compute(const Vec2& v) { return {v.x, v.y}; }
    static std::array<float, 3> compute(const Vec3& v) { return {v.x, v.y, v.z}; }
    static std::array<float, 4> compute(const Vec4& v) { return {v.x, v.y, v.z, v.w}; }
};

struct FloatToInt
{
    static std::int32_t compute(float value) { return truncateToInt(value); }
};

struct IntToFloat
{
    static float compute(std::int32_t value) { return static_cast<float>(value); }
};

/// With six decimals.
struct FloatToString
{
    static std::string compute(float value)
    {
        std::string text;
        appendFloat(text, static_cast<double>(value));
        return text;
    }
};

struct IntToString
{
    static std::string compute(std::int32_t value)
    {
        std::string text;
        appendInt(text, value);
        return text;
    }
};

/// What is no number gives 0.
struct StringToFloat
{
    static float compute(const std::string& text) { return static_cast<float>(parseDouble(text.c_str())); }
};

struct StringToInt
{
    static std::int32_t compute(const std::string& text) { return parseInt(text.c_str()); }
};

} // namespace helvantine::operations
