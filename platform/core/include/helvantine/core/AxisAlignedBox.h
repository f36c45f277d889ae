// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>
#include <helvantine/core/Vec3.h>

namespace helvantine
{

struct Matrix;

/// A box along the axes, both corners included. By default it is the point (0, 0, 0), which is not empty.
struct HELVANTINE_CORE_API AxisAlignedBox
{
    Vec3 minimum;
    Vec3 maximum;

    constexpr AxisAlignedBox() = default;
    constexpr AxisAlignedBox(const Vec3& min, const Vec3& max) : minimum(min), maximum(max) {}

    constexpr bool operator==(const AxisAlignedBox&) const = default;

    void setMinMax(const Vec3& min, const Vec3& max);
    /// Makes the box empty: minimum 3.402823466e38, maximum -3.402823466e38. Widening by an empty box changes
    /// nothing; widening an empty box gives what it was widened by.
    void reset();
    /// Whether the box is what reset left. One that is inverted on some axis isn't: it has what it was given.
    bool isEmpty() const;

    void widen(const Vec3& point);
    void widen(const AxisAlignedBox& box);

    /// Becomes the bounds of its eight corners transformed by `m`. An empty box stays empty.
    void transform(const Matrix& m);

    Vec3 getCenter() const { return (minimum + maximum) * 0.5f; }
    Vec3 getSize() const { return maximum - minimum; }
};
static_assert(sizeof(AxisAlignedBox) == 24);

} // namespace helvantine
