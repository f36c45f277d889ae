// SPDX-License-Identifier: MIT
#include "MathSupport.h"

#include <cmath>
#include <iterator>
#include <limits>
#include <random>

using namespace helvantine;

namespace
{

const Rect s_screen(100, 50, 960, 540);

bool isFinite(const Matrix& m)
{
    for (const auto& row : m.m) {
        for (float value : row) {
            if (!std::isfinite(value))
                return false;
        }
    }
    return true;
}

} // namespace

TEST(Projection, HasTheValuesOfTheFieldOfView)
{
    const double fov = 0.9, aspect = 16.0 / 9, nearZ = 0.5, farZ = 200;
    const Matrix m = MatrixPerspectiveFov(0.9f, 1.7777778f, 0.5f, 200);
    Matrix expected = MatrixScaling(0, 0, 0);
    expected[0][0] = float(1 / std::tan(fov / 2) / aspect);
    expected[1][1] = float(1 / std::tan(fov / 2));
    expected[2][2] = float(farZ / (farZ - nearZ));
    expected[2][3] = 1;
    expected[3][2] = float(-nearZ * farZ / (farZ - nearZ));
    expected[3][3] = 0;
    expectNear(m, expected);
    EXPECT_TRUE(isFinite(MatrixPerspectiveFov(0, 0, 1, 1)));
}

TEST(Projection, OfPixelsPutsAPointOnItsPixel)
{
    const Matrix m = MatrixOrthographic(960, 540, 0, 2);
    expectNear(MatrixTransformCoord({0, 0, 0}, m), {-1, 1, 0});
    expectNear(MatrixTransformCoord({960, 540, 2}, m), {1, -1, 1});
    expectNear(MatrixTransformCoord({240, 135, 1}, m), {-0.5f, 0.5f, 0.5f});
}

TEST(Projection, OfABoxFillsClipSpace)
{
    const Matrix m = MatrixOrthographic(-3, 5, 10, 20, -7, 9);
    expectNear(MatrixTransformCoord({-3, 10, -7}, m), {-1, -1, 0});
    expectNear(MatrixTransformCoord({5, 20, 9}, m), {1, 1, 1});
    expectNear(MatrixTransformCoord({1, 15, 1}, m), {0, 0, 0.5f});
    EXPECT_TRUE(isFinite(MatrixOrthographic(1, 1, 2, 2, 3, 3)));
    EXPECT_FLOAT_EQ(MatrixOrthographic(1, 1, 2, 2, 3, 3)[0][0], 2e6f);
}

TEST(View, LooksFromTheEyeToTheTarget)
{
    const Vec3 eye(3, 4, 5), target(3, 4, -5);
    const Matrix view = MatrixLookAt(eye, target, {0, 1, 0});
    expectNear(MatrixTransformCoord(eye, view), {0, 0, 0});
    expectNear(MatrixTransformCoord(target, view), {0, 0, 10});
    expectNear(MatrixTransformNormal({0, 1, 0}, view), {0, 1, 0});
    expectNear(MatrixTransformNormal({-1, 0, 0}, view), {1, 0, 0}); // left-handed: it looks back along z
    expectNear(MatrixGetCameraPosition(view), eye);
    expectNear(MatrixLookAt({0, 0, -5}, {0, 0, 0}, {0, 1, 0}), MatrixTranslation(0, 0, 5));
}

TEST(View, StaysARotationWhenUpSaysNothing)
{
    struct Case
    {
        Vec3 direction, up, upUsed;
    };
    for (const Case& c : {Case{{0, -9, 0}, {0, 1, 0}, {0, 0, 1}}, Case{{0, 9, 0}, {0, 1, 0}, {0, 0, 1}},
                          Case{{0, 0, 9}, {0, 0, 1}, {1, 0, 0}}, Case{{9, 0, 0}, {0, 0, 0}, {0, 0, 1}}})
    {
        const Vec3 eye(1, 2, 3);
        const Matrix view = MatrixLookAt(eye, eye + c.direction, c.up);
        expectNear(MatrixTransformCoord(eye + c.direction, view), {0, 0, 9});
        expectNear(MatrixTransformNormal(c.upUsed, view), {0, 1, 0});
    }
    expectNear(MatrixLookAt({1, 2, 3}, {1, 2, 3}, {0, 1, 0}), MatrixTranslation(-1, -2, -3));
}

TEST(View, HasOnlyNumbersWhateverItIsMadeOf)
{
    constexpr float huge = std::numeric_limits<float>::max(),
                    infinity = std::numeric_limits<float>::infinity();
    const float numbers[] = {0, 1, huge, -huge, infinity, -infinity, std::nanf(""), 1e-45f};
    std::mt19937 random(5);
    const auto pick = [&] {
        const auto number = [&] { return numbers[random() % std::size(numbers)]; };
        return Vec3(number(), number(), number());
    };
    for (int round = 0; round < 20000; ++round) {
        const Vec3 eye = pick(), target = pick(), up = pick();
        const Matrix view = MatrixLookAt(eye, target, up);
        ASSERT_TRUE(isFinite(view)) << "round " << round;
        const Vec3 z = MatrixTransformNormal({view.m[0][2], view.m[1][2], view.m[2][2]}, view);
        ASSERT_NEAR(z.z, 1, 1e-5f) << "round " << round;
    }
    // Further apart than a float can say.
    const Matrix far = MatrixLookAt({-huge, 0, 0}, {huge, 0, 0}, {0, 1, 0});
    expectNear(MatrixTransformNormal({1, 0, 0}, far), {0, 0, 1});
}

TEST(Projection, OfAPointIsUndoneByItsInverse)
{
    const Matrix view = MatrixLookAt({1, 2, -5}, {0, 0, 0}, {0, 1, 0});
    const Matrix projection = MatrixPerspectiveFov(0.8f, 1.7777778f, 0.1f, 16);
    const Matrix chain = MatrixMultiply(view, projection);
    for (const Vec3& point : {Vec3(0, 0, 0), Vec3(1, -0.5f, 2), Vec3(-2, 1, 0.5f)}) {
        Vec3 pixel, again;
        ASSERT_TRUE(MatrixProject(chain, s_screen, point, pixel));
        ASSERT_TRUE(MatrixUnproject(view, projection, s_screen, pixel, again));
        expectNear(again, point, 1e-3f);
        ASSERT_TRUE(MatrixUnproject(chain, s_screen, pixel, again));
        expectNear(again, point, 1e-3f);
    }
}

TEST(Projection, MapsTheFrustumOntoTheRect)
{
    const Matrix m = MatrixPerspectiveFov(s_pi / 2, 1, 1, 3);
    Vec3 pixel;
    ASSERT_TRUE(MatrixProject(m, s_screen, {-2, 2, 2}, pixel)); // top left edge of the picture
    expectNear(pixel, {100, 50, 0.75f}, 1e-3f);
    ASSERT_TRUE(MatrixProject(m, s_screen, {1, -1, 1}, pixel));
    expectNear(pixel, {1060, 590, 0}, 1e-3f);
}

TEST(Projection, TellsWhatLiesBehindTheEye)
{
    const Matrix m = MatrixPerspectiveFov(s_pi / 2, 1, 1, 3);
    Vec3 pixel;
    EXPECT_FALSE(MatrixProject(m, s_screen, {0, 0, -2}, pixel));
    EXPECT_NEAR(pixel.z, (-2 * 1.5 - 1.5) / 2, 1e-5);
    EXPECT_FALSE(MatrixProject(m, s_screen, {0, 0, 0}, pixel));
    EXPECT_LT(pixel.z, 0);
}

TEST(Projection, LeavesThePointWhenItCannotBeUndone)
{
    Vec3 out(7, 8, 9);
    EXPECT_FALSE(MatrixUnproject(MatrixScaling(1, 0, 1), s_screen, {1, 2, 0.5f}, out));
    EXPECT_FALSE(MatrixUnproject(Matrix(), Rect(0, 0, 0, 540), {1, 2, 0.5f}, out));
    EXPECT_FALSE(MatrixUnproject(Matrix(), MatrixScaling(0, 1, 1), s_screen, {1, 2, 0.5f}, out));
    EXPECT_EQ(out, Vec3(7, 8, 9));
}
