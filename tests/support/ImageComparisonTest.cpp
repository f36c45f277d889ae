// SPDX-License-Identifier: MIT
#include <helvantine/renderer/D3D11Types.h>
#include <helvantine/testsupport/ImageComparison.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <cstring>
#include <limits>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

Image makeRamp()
{
    Image image(16, 16);
    for (unsigned i = 0; i < 256; ++i) {
        const float value = static_cast<float>(i) / 255.0f;
        image.at(i % 16, i / 16) = Vec4(value, 1.0f - value, 0.5f, value);
    }
    return image;
}

} // namespace

TEST(Image, ComesBackFromPngByteByByte)
{
    const TemporaryFolder folder;
    const Image ramp = makeRamp();
    ASSERT_TRUE(writePng(folder.file("made/ramp.png"), ramp));
    const Image read = readPng(folder.file("made/ramp.png"));
    ASSERT_FALSE(read.isEmpty());
    for (unsigned i = 0; i < 256; ++i)
        ASSERT_EQ(read.at8(i % 16, i / 16), ramp.at8(i % 16, i / 16)) << i;
    EXPECT_TRUE(readPng(folder.file("absent.png")).isEmpty());
}

TEST(Image, DecodesEveryColourFormat)
{
    const std::vector<uint8_t> bytes{10, 20, 30, 40};
    EXPECT_EQ(Image::fromBytes(1, 1, DXGI_FORMAT_B8G8R8A8_UNORM, bytes).at8(0, 0),
              (Image::Pixel8{30, 20, 10, 40}));
    EXPECT_EQ(Image::fromBytes(1, 1, DXGI_FORMAT_R8G8B8A8_UNORM, bytes).at8(0, 0),
              (Image::Pixel8{10, 20, 30, 40}));

    // 1.0, -2.0, the smallest number and infinity as halves
    const std::vector<uint8_t> halves{0x00, 0x3c, 0x00, 0xc0, 0x01, 0x00, 0x00, 0x7c};
    const Vec4 pixel = Image::fromBytes(1, 1, DXGI_FORMAT_R16G16B16A16_FLOAT, halves).at(0, 0);
    EXPECT_EQ(pixel.x, 1.0f);
    EXPECT_EQ(pixel.y, -2.0f);
    EXPECT_EQ(pixel.z, 0x1p-24f);
    EXPECT_EQ(pixel.w, std::numeric_limits<float>::infinity());

    EXPECT_TRUE(Image::fromBytes(2, 1, DXGI_FORMAT_R8G8B8A8_UNORM, bytes).isEmpty()) << "too few bytes";
    EXPECT_TRUE(Image::fromBytes(1, 1, 0, bytes).isEmpty()) << "no format";
}

TEST(ImageComparison, TellsWhatDiffersAndLeavesPictures)
{
    const Image expected = makeRamp();
    Image actual = expected;
    actual.at(3, 5).y += 3.0f / 255.0f;

    EXPECT_TRUE(matches(actual, expected, {3.0f, 0.0f}));
    EXPECT_TRUE(matches(actual, expected, {0.0f, 1.0f / 256.0f}));
    const testing::AssertionResult result = matches(actual, expected, {2.0f, 0.0f}, "told");
    EXPECT_FALSE(result);
    const std::string stem = getOutputFolder() + "/ImageComparison.TellsWhatDiffersAndLeavesPictures.told";
    EXPECT_EQ(result.message(),
              "1 of 256 pixels differ by more than 2 steps, the largest by 3 steps at (3, 5)"
              "\npictures: " +
                  stem + ".{actual,expected,diff}.png");
    EXPECT_EQ(readPng(stem + ".diff.png").at8(3, 5), (Image::Pixel8{255, 0, 0, 255}));
    EXPECT_EQ(readPng(stem + ".diff.png").at8(4, 5), (Image::Pixel8{0, 0, 0, 255}));
}

TEST(ImageComparison, RefusesWhatIsNoMatch)
{
    const Image image(2, 2);
    EXPECT_FALSE(matches(Image(), Image(), {255.0f, 1.0f}));
    EXPECT_FALSE(matches(Image(2, 3), image, {255.0f, 0.0f}));
    Image nan = image;
    nan.at(0, 0).x = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(matches(nan, image, {255.0f, 0.0f}));
    EXPECT_FALSE(matchesGolden(image, "there-is-none", {}));
}
