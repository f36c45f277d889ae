// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/testsupport/Image.h>

#include <gtest/gtest.h>

/// Comparing pictures.
///
/// A comparison that fails leaves NAME.actual.png, NAME.expected.png and NAME.diff.png in the folder of
/// getOutputFolder and says where. NAME is the test's, with the label behind it.
namespace helvantine::test
{

/// What two pictures may differ by. The reason stands where a test states it.
struct Tolerance
{
    float steps = 0.0f;    ///< of 1/255, in any channel
    float outliers = 0.0f; ///< share of the pixels that may differ by more
};

/// Software rasterizers differ in the last bits of interpolation, which rounding turns into a step or two.
inline constexpr Tolerance rasterTolerance{2.0f, 0.0f};

testing::AssertionResult matches(const Image& actual, const Image& expected, Tolerance tolerance,
                                 const std::string& label = "");

/// Against tests/goldens/NAME.png. With HELVANTINE_UPDATE_GOLDENS=1 in the environment the file is written
/// instead, and the comparison fails to say so.
testing::AssertionResult matchesGolden(const Image& actual, const std::string& name, Tolerance tolerance);

/// build/…/test-output, made when it isn't there.
std::string getOutputFolder();

} // namespace helvantine::test
