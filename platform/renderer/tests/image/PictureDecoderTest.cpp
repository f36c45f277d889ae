// SPDX-License-Identifier: MIT
#include "LibraryFiles.h"
#include "image/ImageDecoder.h"

#include <helvantine/core/Text.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

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

Bytes decodePixels(const Bytes& file)
{
    std::string error;
    const auto image = decodeImage(file, error);
    EXPECT_TRUE(image) << error;
    return image ? getLevelBytes(*image, 0) : Bytes();
}

TEST(PictureDecoder, PngOfEveryKindBecomesRgba)
{
    const struct
    {
        const char* name;
        PngFile png;
        Bytes expected;
    } cases[] = {
        {"grey of 2 bits", {2, 1, 2, 0, false, {0x60}}, {85, 85, 85, 255, 170, 170, 170, 255}},
        {"16 bits lose the lower half", {1, 1, 16, 2, false, {1, 255, 2, 0, 3, 128}}, {1, 2, 3, 255}},
        {"a transparent grey", {2, 1, 8, 0, false, {7, 8}, {}, {0, 8}}, {7, 7, 7, 255, 8, 8, 8, 0}},
        {"a transparent colour, to all 16 bits",
         {2, 1, 16, 2, false, {1, 1, 2, 2, 3, 3, 1, 1, 2, 2, 3, 4}, {}, {1, 1, 2, 2, 3, 3}},
         {1, 2, 3, 0, 1, 2, 3, 255}},
        {"a palette with alpha, and an index behind it",
         {3, 1, 4, 3, false, {0x10, 0x20}, {1, 2, 3, 4, 5, 6}, {9}},
         {4, 5, 6, 255, 1, 2, 3, 9, 0, 0, 0, 0}},
        {"grey and alpha", {1, 1, 8, 4, false, {50, 60}}, {50, 50, 50, 60}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(decodePixels(c.png.write()), c.expected);
    }
}

TEST(PictureDecoder, PngInPassesIsTheSameAsInRows)
{
    for (const int colorType : {3, 6}) {
        PngFile png{.width = 13, .height = 11, .colorType = colorType, .rows = makePattern(13, 11)};
        png.palette = makePattern(8, 6);
        const Bytes rows = decodePixels(png.write());
        png.interlaced = true;
        EXPECT_EQ(decodePixels(png.write()), rows);
    }
}

TEST(PictureDecoder, JpgInScansIsTheSameAsInOne)
{
    JpegFile jpeg{.width = 19, .height = 17, .pixels = makePattern(19, 17)};
    const Bytes one = decodePixels(jpeg.write());
    for (const auto scans : {JpegFile::OneForEachComponent, JpegFile::Progressive}) {
        jpeg.scans = scans;
        EXPECT_EQ(decodePixels(jpeg.write()), one);
    }
}

TEST(PictureDecoder, JpgOfInksIsLightTimesBlack)
{
    JpegFile jpeg{.components = 4, .pixels = {}};
    for (int i = 0; i < 64; ++i)
        jpeg.pixels.insert(jpeg.pixels.end(), {255, 128, 0, 100}); // inverted, as its mark says
    const Bytes pixels = decodePixels(jpeg.write());
    ASSERT_EQ(pixels.size(), 256u);
    EXPECT_NEAR(pixels[0], 100, 2);
    EXPECT_NEAR(pixels[1], 50, 2);
    EXPECT_NEAR(pixels[2], 0, 2);
    EXPECT_EQ(pixels[3], 255);
}

/// Cuts out a scan, counted from 0: its mark and the codes behind it.
Bytes removeScan(Bytes jpeg, int index)
{
    const Bytes startOfScan = {0xff, 0xda};
    auto start = jpeg.begin();
    for (int i = 0; i <= index; ++i)
        start = std::search(start + 1, jpeg.end(), startOfScan.begin(), startOfScan.end());
    auto end = start + 2;
    while (end[0] != 0xff || end[1] == 0) // what looks like a mark within codes has a 0 behind it
        ++end;
    jpeg.erase(start, end);
    return jpeg;
}

/// A png of 1 by 1 whose data goes on behind its row with what no decoder could read.
Bytes makePngWithRemains()
{
    Bytes png = PngFile{.width = 1, .height = 1, .rows = {1, 2, 3, 4}}.write();
    const Bytes name = {'I', 'D', 'A', 'T'};
    const auto data = std::search(png.begin(), png.end(), name.begin(), name.end());
    // A stored block of the row's five bytes and 300 more, and then one of a kind that doesn't exist.
    Bytes stored = {0x78, 0x01, 0x00, 0x31, 0x01, 0xce, 0xfe, 0, 1, 2, 3, 4};
    stored.resize(stored.size() + 300);
    stored.push_back(0x07);
    Bytes chunk(name);
    chunk.insert(chunk.end(), stored.begin(), stored.end());
    uint32_t sum = 0xffffffff;
    for (const uint8_t byte : chunk) {
        sum ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ (sum & 1 ? 0xedb88320 : 0);
    }
    for (int shift = 24; shift >= 0; shift -= 8)
        chunk.push_back(static_cast<uint8_t>(~sum >> shift));
    Bytes file(png.begin(), data - 4);
    file.insert(file.end(),
                {0, 0, static_cast<uint8_t>(stored.size() >> 8), static_cast<uint8_t>(stored.size())});
    file.insert(file.end(), chunk.begin(), chunk.end());
    file.insert(file.end(), png.end() - 12, png.end());
    return file;
}

TEST(PictureDecoder, WhatFollowsTheLastRowIsNotInflated)
{
    EXPECT_EQ(decodePixels(makePngWithRemains()), (Bytes{1, 2, 3, 4}));
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
    Bytes badSum = encodePng(5, 3, makePattern(5, 3));
    badSum[badSum.size() - 13] ^= 1; // the last before the end mark
    const Bytes jpg = JpegFile{}.write();
    const JpegFile parts{.scans = JpegFile::OneForEachComponent};
    const JpegFile passes{.scans = JpegFile::Progressive};

    const struct
    {
        const char* name;
        Bytes file;
        std::string error;
    } cases[] = {
        {"nothing", {}, "not a png, bmp, tga, jpg or dds file"},
        {"text",
         {'h', 'e', 'l', 'l', 'o', ' ', 'w', 'o', 'r', 'l', 'd'},
         "not a png, bmp, tga, jpg or dds file"},
        {"too wide", widePng, "png of 16389 by 3 pixels, sides from 1 to 16384 can be read"},
        {"too few bytes", thinPng, "png of 12293 by 12291 pixels in 93 bytes, at least 585644 are needed"},
        {"cut header", cutPng, "png with a damaged header"},
        {"cut", shortBmp, "bmp of 5 by 3 pixels in 181 bytes, at least 182 are needed"},
        {"checksum", badSum, "damaged png: IDAT: CRC error"},
        {"no end mark", Bytes(jpg.begin(), jpg.end() - 2),
         formatString("jpg ends early, at byte %d", int(jpg.size()) - 2)},
        {"no scan of a component", removeScan(parts.write(), 1),
         "damaged jpg: component 2 has no first scan"},
        {"no first scan", removeScan(passes.write(), 0), "damaged jpg: component 1 has no first scan"},
        {"scans", JpegFile{.components = 1, .scans = JpegFile::Many}.write(),
         "damaged jpg: it has more than 64 scans"},
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
