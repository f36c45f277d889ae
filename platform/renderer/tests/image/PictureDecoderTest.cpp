// SPDX-License-Identifier: MIT
#include "PictureFile.h"
#include "image/ImageDecoder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace helvantine::test
{
namespace
{

Bytes getLevelBytes(const ImageData& image, unsigned mip)
{
    const uint8_t* pixels = image.getPixels(0, mip);
    return Bytes(pixels, pixels + image.getLevel(0, mip).size);
}

TEST(PictureDecoder, LosslessFormatsKeepEveryPixelAndGetAFullMipChain)
{
    const struct
    {
        const char* name;
        Bytes (*encode)(unsigned, unsigned, const Bytes&);
    } formats[] = {{"png", encodePng}, {"bmp", encodeBmp}, {"tga", encodeTga}};

    for (const auto& format : formats) {
        SCOPED_TRACE(format.name);
        const Bytes pixels = makePattern(5, 3);
        std::string error;
        const auto image = decodeImage(format.encode(5, 3, pixels), error);
        ASSERT_TRUE(image) << error;
        EXPECT_EQ(image->format, DXGI_FORMAT_R8G8B8A8_UNORM);
        EXPECT_EQ(image->width, 5u);
        EXPECT_EQ(image->height, 3u);
        EXPECT_EQ(image->mipCount, 3u);
        EXPECT_EQ(getLevelBytes(*image, 0), pixels);
    }
}

TEST(PictureDecoder, JpgComesCloseAndIsOpaque)
{
    Bytes pixels(16 * 8 * 4, 200);
    for (size_t i = 0; i < pixels.size(); i += 4)
        pixels[i] = 40;
    std::string error;
    const auto image = decodeImage(encodeJpg(16, 8, pixels), error);
    ASSERT_TRUE(image) << error;
    const uint8_t* last = image->getPixels(0, 0) + image->getLevel(0, 0).size - 4;
    EXPECT_NEAR(last[0], 40, 2);
    EXPECT_NEAR(last[1], 200, 2);
    EXPECT_NEAR(last[2], 200, 2);
    EXPECT_EQ(last[3], 255);
}

/// Files as other programs write them, byte by byte.
TEST(PictureDecoder, ReadsRowsFromEitherEnd)
{
    const Bytes topDownBmp = {'B', 'M', 62, 0, 0, 0, 0, 0, 0,    0,    54,   0,    0, 0,        // file header
                              40,  0,   0,  0, 1, 0, 0, 0, 0xfe, 0xff, 0xff, 0xff, 1, 0, 24, 0, // height -2
                              0,   0,   0,  0, 0, 0, 0, 0, 0,    0,    0,    0,    0, 0, 0,  0,
                              0,   0,   0,  0, 0, 0, 0, 0, //
                              1,   2,   3,  0, 4, 5, 6, 0};
    const Bytes topDownTga = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 2, 0, 24, 0x20, 1, 2, 3, 4, 5, 6};
    const Bytes bottomUpTga = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 2, 0, 24, 0, 4, 5, 6, 1, 2, 3};
    const Bytes expected = {3, 2, 1, 255, 6, 5, 4, 255};

    for (const Bytes& file : {topDownBmp, topDownTga, bottomUpTga}) {
        std::string error;
        const auto image = decodeImage(file, error);
        ASSERT_TRUE(image) << error;
        EXPECT_EQ(getLevelBytes(*image, 0), expected);
    }
}

TEST(PictureDecoder, SaysWhyAFileIsRefused)
{
    Bytes widePng = encodePng(5, 3, makePattern(5, 3));
    widePng[18] = 0x40; // width 16,389
    Bytes thinPng = encodePng(5, 3, makePattern(5, 3));
    thinPng[18] = thinPng[22] = 0x30; // 12,293 by 12,291
    Bytes shortBmp = encodeBmp(5, 3, makePattern(5, 3));
    shortBmp.pop_back();
    Bytes cutPng = encodePng(5, 3, makePattern(5, 3));
    cutPng.resize(20);
    Bytes jpg = encodeJpg(8, 8, makePattern(8, 8));
    for (int scan = 0; scan < 64; ++scan)
        jpg.insert(jpg.end(), {0xff, 0xda});

    const struct
    {
        const char* name;
        Bytes file;
        const char* error;
    } cases[] = {
        {"nothing", {}, "not a png, bmp, tga, jpg or dds file"},
        {"text",
         {'h', 'e', 'l', 'l', 'o', ' ', 'w', 'o', 'r', 'l', 'd'},
         "not a png, bmp, tga, jpg or dds file"},
        {"too wide", widePng, "png of 16389 by 3 pixels, sides from 1 to 16384 can be read"},
        {"too few bytes", thinPng, "png of 12293 by 12291 pixels in 93 bytes, at least 585644 are needed"},
        {"cut header", cutPng, "png with a damaged header"},
        {"cut", shortBmp, "bmp of 5 by 3 pixels in 181 bytes, at least 182 are needed"},
        {"scans", jpg, "jpg with 65 scans, at most 64 are read"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string error;
        EXPECT_FALSE(decodeImage(c.file, error));
        EXPECT_EQ(error, c.error);
    }
}

} // namespace
} // namespace helvantine::test
