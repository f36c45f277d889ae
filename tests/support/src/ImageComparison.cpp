// SPDX-License-Identifier: MIT
#include <helvantine/testsupport/ImageComparison.h>

#include <helvantine/core/Text.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>

namespace helvantine::test
{

namespace
{

struct Difference
{
    size_t pixels = 0;    ///< beyond the tolerance
    float largest = 0.0f; ///< in steps
    unsigned x = 0;       ///< of the largest
    unsigned y = 0;
    Image picture; ///< differences in grey, those beyond the tolerance in red
};

float channelSteps(float a, float b)
{
    if (a == b || (std::isnan(a) && std::isnan(b)))
        return 0.0f;
    const float steps = std::abs(a - b) * 255.0f;
    return std::isnan(steps) ? INFINITY : steps;
}

float pixelSteps(const Vec4& a, const Vec4& b)
{
    return std::max(
        {channelSteps(a.x, b.x), channelSteps(a.y, b.y), channelSteps(a.z, b.z), channelSteps(a.w, b.w)});
}

Difference findDifference(const Image& actual, const Image& expected, Tolerance tolerance)
{
    Difference difference;
    difference.picture = Image(actual.getWidth(), actual.getHeight(), Vec4(0, 0, 0, 1));
    // Bytes turned into floats are off by rounding: a step is only passed when it is passed clearly.
    const float limit = tolerance.steps + 0.001f;
    for (unsigned y = 0; y < actual.getHeight(); ++y) {
        for (unsigned x = 0; x < actual.getWidth(); ++x) {
            const float steps = pixelSteps(actual.at(x, y), expected.at(x, y));
            const float grey = std::min(steps * 8.0f / 255.0f, 1.0f);
            difference.picture.at(x, y) = steps > limit ? Vec4(1, 0, 0, 1) : Vec4(grey, grey, grey, 1);
            difference.pixels += steps > limit;
            if (steps > difference.largest) {
                difference.largest = steps;
                difference.x = x;
                difference.y = y;
            }
        }
    }
    return difference;
}

/// Path and stem of the files that the running test leaves.
std::string getOutputStem(const std::string& label)
{
    std::string name = "comparison";
    if (const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info())
        name = std::string(test->test_suite_name()) + "." + test->name();
    if (!label.empty())
        name += "." + label;
    std::replace(name.begin(), name.end(), '/', '-');
    return getOutputFolder() + "/" + name;
}

/// Leaves the pictures of a failed comparison and says where.
testing::AssertionResult leavePictures(testing::AssertionResult result, const std::string& label,
                                       const Image& actual, const Image& expected, const Image& difference)
{
    const std::string stem = getOutputStem(label);
    writePng(stem + ".actual.png", actual);
    if (!expected.isEmpty())
        writePng(stem + ".expected.png", expected);
    if (!difference.isEmpty())
        writePng(stem + ".diff.png", difference);
    return result << "\npictures: " << stem << ".{actual,expected,diff}.png";
}

} // namespace

testing::AssertionResult matches(const Image& actual, const Image& expected, Tolerance tolerance,
                                 const std::string& label)
{
    if (actual.isEmpty() || actual.getWidth() != expected.getWidth() ||
        actual.getHeight() != expected.getHeight())
    {
        return leavePictures(testing::AssertionFailure()
                                 << "picture of " << actual.getWidth() << " by " << actual.getHeight()
                                 << ", expected " << expected.getWidth() << " by " << expected.getHeight(),
                             label, actual, expected, {});
    }
    const Difference difference = findDifference(actual, expected, tolerance);
    const size_t total = static_cast<size_t>(actual.getWidth()) * actual.getHeight();
    if (static_cast<float>(difference.pixels) <= tolerance.outliers * static_cast<float>(total))
        return testing::AssertionSuccess();
    return leavePictures(testing::AssertionFailure() << formatString(
                             "%zu of %zu pixels differ by more than %g steps, the largest by %.3g "
                             "steps at (%u, %u)",
                             difference.pixels, total, static_cast<double>(tolerance.steps),
                             static_cast<double>(difference.largest), difference.x, difference.y),
                         label, actual, expected, difference.picture);
}

testing::AssertionResult matchesGolden(const Image& actual, const std::string& name, Tolerance tolerance)
{
    const std::string path = std::string(HELVANTINE_GOLDENS) + "/" + name + ".png";
    const char* update = std::getenv("HELVANTINE_UPDATE_GOLDENS");
    if (update && *update == '1') {
        return testing::AssertionFailure()
               << (writePng(path, actual) ? "golden written, look at it: " : "golden can't be written: ")
               << path;
    }
    const Image expected = readPng(path);
    if (expected.isEmpty()) {
        return leavePictures(testing::AssertionFailure() << "no golden " << path, name, actual, {}, {});
    }
    return matches(actual, expected, tolerance, name);
}

std::string getOutputFolder()
{
    std::error_code ignored;
    std::filesystem::create_directories(HELVANTINE_TEST_OUTPUT, ignored);
    return HELVANTINE_TEST_OUTPUT;
}

} // namespace helvantine::test
