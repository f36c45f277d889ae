// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine
{

/// A rectangle in pixels or units of a screen: its top left corner and its size. y runs downwards.
struct Rect
{
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    constexpr Rect() = default;
    constexpr Rect(float x_, float y_, float width_, float height_)
        : x(x_), y(y_), width(width_), height(height_)
    {
    }

    constexpr bool operator==(const Rect&) const = default;
};
static_assert(sizeof(Rect) == 16);

} // namespace helvantine
