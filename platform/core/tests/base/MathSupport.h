// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Matrix.h>

#include <gtest/gtest.h>

#include <cmath>

namespace helvantine
{

inline constexpr float s_pi = 3.14159265f;

inline void expectNear(const Vec3& actual, const Vec3& expected, float tolerance = 1e-5f)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

inline void expectNear(const Matrix& actual, const Matrix& expected, float tolerance = 1e-5f)
{
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(actual[row][column], expected[row][column], tolerance) << row << ", " << column;
    }
}

/// A rotation and its negative are the same.
inline void expectSameRotation(const Quat& actual, const Quat& expected, float tolerance = 1e-5f)
{
    EXPECT_NEAR(std::abs(dot(actual, expected)), 1.0f, tolerance)
        << actual.x << ", " << actual.y << ", " << actual.z << ", " << actual.w;
}

} // namespace helvantine
