// SPDX-License-Identifier: MIT
#include <helvantine/renderer/RenderUtil.h>
#include <helvantine/renderer/Viewport.h>
#include <helvantine/testsupport/RenderingTest.h>

#include <cmath>

namespace helvantine::test
{
namespace
{

constexpr unsigned width = 64;
constexpr unsigned height = 48;
const Vec4 white(1, 1, 1, 1);
const Vec4 halfWhite(1, 1, 1, 0.5f);
constexpr float pi = 3.14159265f;

class RenderUtilTest : public RenderingTest
{
protected:
    RenderUtilTest() : RenderingTest(width, height) {}

    void SetUp() override
    {
        RenderingTest::SetUp();
        m_util.setTransform(MatrixOrthographic(width, height, 0.0f, 1.0f)); // points are pixels
    }

    static bool isLit(const Image& image, unsigned x, unsigned y) { return image.at(x, y).x > 0.0f; }

    static unsigned countLit(const Image& image)
    {
        unsigned lit = 0;
        for (unsigned y = 0; y < height; ++y) {
            for (unsigned x = 0; x < width; ++x)
                lit += isLit(image, x, y);
        }
        return lit;
    }

    /// Compares which pixels are lit with a rule.
    template <class Rule>
    static void expectLit(const Image& image, Rule rule)
    {
        for (unsigned y = 0; y < height; ++y) {
            for (unsigned x = 0; x < width; ++x)
                ASSERT_EQ(isLit(image, x, y), rule(int(x), int(y))) << x << ", " << y;
        }
    }

    /// Seen from (0, 0, -10), 45 degrees high; the middle of the picture is the origin.
    static Matrix getPerspective()
    {
        return MatrixMultiply(MatrixTranslation(0, 0, 10),
                              MatrixPerspectiveFov(pi / 4, float(width) / height, 0.1f, 100.0f));
    }

    static bool isLitAround(const Image& image, const Matrix& transform, const Vec3& point)
    {
        Vec3 pixel;
        EXPECT_TRUE(MatrixProject(transform, {0, 0, width, height}, point, pixel));
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                if (isLit(image, unsigned(pixel.x) + unsigned(dx), unsigned(pixel.y) + unsigned(dy)))
                    return true;
            }
        }
        return false;
    }

    RenderUtil m_util;
};

TEST_F(RenderUtilTest, ARectCoversEachPixelOfItsBorderOnce)
{
    const Image image = draw([&] {
        m_util.drawLineRect({10.5f, 5.5f, 0}, {30.5f, 5.5f, 0}, {30.5f, 25.5f, 0}, {10.5f, 25.5f, 0},
                            halfWhite, true);
    });
    expectLit(image, [](int x, int y) {
        const bool inside = x >= 10 && x <= 30 && y >= 5 && y <= 25;
        return inside && (x == 10 || x == 30 || y == 5 || y == 25);
    });
    for (const auto& [x, y] : {std::pair{10u, 5u}, {30u, 5u}, {30u, 25u}, {10u, 25u}, {20u, 5u}})
        EXPECT_NEAR(image.at(x, y).x, 0.5f, 0.003f) << "covered twice would be 0.75";
}

TEST_F(RenderUtilTest, ASlantedLineHasOnePixelPerColumn)
{
    const Vec3 from(5.5f, 7.5f, 0);
    const Vec3 to(55.5f, 31.5f, 0);
    const Image image = draw([&] { m_util.drawLineRect(from, to, to, from, white, false); });
    for (unsigned x = 5; x <= 55; ++x) {
        unsigned lit = 0;
        for (unsigned y = 0; y < height; ++y) {
            if (!isLit(image, x, y))
                continue;
            ++lit;
            EXPECT_NEAR(float(y) + 0.5f, 7.5f + (float(x) - 5.0f) * 24.0f / 50.0f, 0.51f) << "column " << x;
        }
        EXPECT_EQ(lit, 1u) << "column " << x;
    }
}

TEST_F(RenderUtilTest, TheGridHas21LinesEachWayAndTheThicknessAsked)
{
    // x stays x, z becomes y, the middle is pixel (32, 24).
    Matrix flat;
    flat[1][1] = flat[2][2] = 0;
    flat[1][2] = flat[2][1] = 1;
    flat[3][0] = 32.5f;
    flat[3][1] = 24.5f;
    const Matrix transform = MatrixMultiply(flat, MatrixOrthographic(width, height, 0.0f, 1.0f));
    m_util.setTransform(transform);

    const Image thin = draw([&] { m_util.drawLineGrid(2, 1, white, false); });
    expectLit(thin, [](int x, int y) {
        const auto onLine = [](int across, int along) {
            return across % 2 == 0 && std::abs(across) <= 20 && along >= -20 && along < 20;
        };
        return onLine(x - 32, y - 24) || onLine(y - 24, x - 32);
    });

    const Image thick = draw([&] { m_util.drawLineGrid(8, 3, white, false); });
    expectLit(thick, [](int x, int y) { return (x - 32 + 65) % 8 <= 2 || (y - 24 + 65) % 8 <= 2; });
}

TEST_F(RenderUtilTest, LinesThatStartBehindTheEyeEndAtTheHorizon)
{
    m_util.setTransform(MatrixMultiply(MatrixTranslation(0, -1, 0),
                                       MatrixPerspectiveFov(pi / 2, float(width) / height, 0.1f, 1000.0f)));
    const Image image = draw([&] { m_util.drawLineGrid(20, 1, white, false); });
    unsigned below = 0;
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            EXPECT_FALSE(y < height / 2 - 1 && isLit(image, x, y)) << x << ", " << y;
            below += isLit(image, x, y);
        }
    }
    EXPECT_TRUE(isLit(image, width / 2 - 1, height - 1) || isLit(image, width / 2, height - 1))
        << "the line below the eye reaches the lower edge";
    EXPECT_GT(below, 60u);
}

TEST_F(RenderUtilTest, TheDepthByteTurnsTheTestOff)
{
    const auto drawStrip = [&](float y, float depth) {
        m_util.drawQuad({0, y, depth}, {64, 0, 0}, {0, 4, 0}, white);
    };
    const Image image = draw([&] {
        m_util.drawQuad({0, 0, 0.5f}, {64, 0, 0}, {0, 48, 0}, {0, 1, 0, 1});
        drawStrip(0, 0.8f); // behind
        drawStrip(10, 0.2f);
        m_util.m_depthTest = 0;
        drawStrip(20, 0.8f);
        drawStrip(30, -0.5f); // in front of the near plane
        m_util.m_depthTest = 1;
        drawStrip(40, -0.5f);
    });
    EXPECT_FALSE(isLit(image, 5, 2));
    EXPECT_TRUE(isLit(image, 5, 12));
    EXPECT_TRUE(isLit(image, 5, 22));
    EXPECT_TRUE(isLit(image, 5, 32));
    EXPECT_FALSE(isLit(image, 5, 42));
}

TEST_F(RenderUtilTest, ABoxHasItsTwelveEdgesAndAnEmptyOneNothing)
{
    const Matrix transform = MatrixMultiply(MatrixRotateY(0.5f), getPerspective());
    m_util.setTransform(transform);
    const Image image = draw([&] {
        m_util.drawLineBoundingBox({{-2, -1.5f, -1}, {2, 1.5f, 1}}, white, true);
    });
    for (const float a : {-1.0f, 1.0f}) {
        for (const float b : {-1.0f, 1.0f}) {
            EXPECT_TRUE(isLitAround(image, transform, {0, 1.5f * a, b}));
            EXPECT_TRUE(isLitAround(image, transform, {2 * a, 0, b}));
            EXPECT_TRUE(isLitAround(image, transform, {2 * a, 1.5f * b, 0}));
        }
    }
    EXPECT_FALSE(isLitAround(image, transform, {0, 0, -1}));

    AxisAlignedBox empty;
    empty.reset();
    EXPECT_EQ(countLit(draw([&] { m_util.drawLineBoundingBox(empty, white, true); })), 0u);
}

TEST_F(RenderUtilTest, ASphereIsDrawnByCirclesOfItsRadius)
{
    const Matrix transform = getPerspective();
    m_util.setTransform(transform);
    const Image image = draw([&] { m_util.drawLineBoundingSphere(3, 6, 50, white, true); });
    EXPECT_TRUE(isLitAround(image, transform, {0, 3, 0}));
    EXPECT_TRUE(isLitAround(image, transform, {3, 0, 0})) << "the level circle in the middle";
    EXPECT_TRUE(isLitAround(image, transform, {0, 2.1213f, -2.1213f})) << "the upper level circle";
    expectLit(image, [&](int x, int y) {
        const float distance = std::hypot(float(x) - 31.5f, float(y) - 23.5f);
        return isLit(image, unsigned(x), unsigned(y)) &&
               distance < 20; // outline: 24 / tan(22.5) · 3 / sqrt(91)
    });
}

TEST_F(RenderUtilTest, FilledShapesCoverTheirInside)
{
    const Image quad = draw([&] { m_util.drawQuad({8, 8, 0}, {20, 0, 0}, {0, 10, 0}, {1, 0, 0, 0.5f}); });
    expectLit(quad, [](int x, int y) { return x >= 8 && x < 28 && y >= 8 && y < 18; });
    EXPECT_NEAR(quad.at(18, 12).x, 0.5f, 0.003f);

    const Image half = draw([&] { m_util.drawTri({8, 8, 0}, {20, 0, 0}, {0, 20, 0}, white); });
    EXPECT_TRUE(isLit(half, 12, 12));
    EXPECT_FALSE(isLit(half, 24, 24));

    const Image axis = draw([&] {
        m_util.drawAxis({10, 20.5f, 0.5f}, {40, 0, 0}, {0, 40, 0}, {0, 0, 4}, 0.1f, 0.75f, white);
    });
    EXPECT_TRUE(isLit(axis, 20, 20));
    EXPECT_FALSE(isLit(axis, 20, 22)) << "the line is thin";
    EXPECT_TRUE(isLit(axis, 41, 22)) << "the cone is wide where it begins";
    EXPECT_FALSE(isLit(axis, 48, 22)) << "and ends in a tip";
}

TEST_F(RenderUtilTest, CirclesAndTheirParts)
{
    const Vec3 middle(32, 24, 0);
    const Image circle = draw([&] { m_util.drawCircle(middle, {16, 0, 0}, {0, 16, 0}, 90, white); });
    for (const auto& [x, y] : {std::pair{47u, 24u}, {16u, 24u}, {32u, 8u}, {32u, 39u}})
        EXPECT_TRUE(isLit(circle, x, y) || isLit(circle, x + 1, y) || isLit(circle, x, y + 1))
            << x << ", " << y;

    const Plane rightHalf({1, 0, 0}, -32);
    const Image half = draw([&] {
        m_util.drawCircleHalf(middle, {16, 0, 0}, {0, 16, 0}, 90, white, rightHalf);
    });
    expectLit(half, [&](int x, int y) {
        const Image& source = x == 31 ? half : circle; // where the cut may fall on either pixel
        return x >= 31 && isLit(source, unsigned(x), unsigned(y));
    });

    // A quarter turn about z from the right: y grows downwards here.
    const Image sector = draw([&] { m_util.drawCamem(middle, {0, 0, 1}, {16, 0, 0}, 20, white, pi / 2); });
    EXPECT_TRUE(isLit(sector, 38, 30));
    EXPECT_FALSE(isLit(sector, 38, 18));
    EXPECT_FALSE(isLit(sector, 26, 30));
    EXPECT_FALSE(isLit(sector, 45, 37)) << "outside of the circle";
}

TEST_F(RenderUtilTest, DrawsIntoTheViewportItWasGiven)
{
    m_util.setViewport(new Viewport(20, 10, 32, 24));
    const Image image = draw([&] { m_util.drawQuad({0, 0, 0}, {64, 0, 0}, {0, 48, 0}, white); });
    expectLit(image, [](int x, int y) { return x >= 20 && x < 52 && y >= 10 && y < 34; });
    m_util.setViewport(nullptr);
    EXPECT_EQ(countLit(draw([&] {
                  m_util.drawQuad({0, 0, 0}, {64, 0, 0}, {0, 48, 0}, white);
              })),
              width * height);
}

TEST_F(RenderUtilTest, OneHelperServesRendererAfterRenderer)
{
    const auto fill = [&] { m_util.drawQuad({0, 0, 0}, {64, 0, 0}, {0, 48, 0}, white); };
    EXPECT_EQ(countLit(draw(fill)), width * height);
    TearDown();
    fill(); // without a renderer nothing happens
    SetUp();
    EXPECT_EQ(countLit(draw(fill)), width * height);
}

TEST(RenderUtil, TheGlobalNamesTheLatestThatLives)
{
    auto first = std::make_unique<RenderUtil>();
    auto second = std::make_unique<RenderUtil>();
    auto third = std::make_unique<RenderUtil>();
    EXPECT_EQ(g_renderUtil, third.get());
    second.reset();
    EXPECT_EQ(g_renderUtil, third.get());
    third.reset();
    EXPECT_EQ(g_renderUtil, first.get());
    first.reset();
    EXPECT_EQ(g_renderUtil, nullptr);
}

} // namespace
} // namespace helvantine::test
