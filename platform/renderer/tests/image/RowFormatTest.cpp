// SPDX-License-Identifier: MIT
// The formats that are decoded here and not by a library, byte by byte as other programs write them.
#include "RowFiles.h"
#include "image/ImageDecoder.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace helvantine::test
{
namespace
{

struct Case
{
    const char* name;
    Bytes file;
    Bytes expected; ///< RGBA from the top
};

void expectPictures(std::initializer_list<Case> cases)
{
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string error;
        const auto image = decodeImage(c.file, error);
        ASSERT_TRUE(image) << error;
        EXPECT_EQ(Bytes(image->bytes.begin(), image->bytes.begin() + ptrdiff_t(image->getLevel(0, 0).size)),
                  c.expected);
    }
}

const Bytes twoColors = {1, 2, 3, 0, 4, 5, 6, 99}; // blue, green, red, unused
constexpr std::initializer_list<uint32_t> masks565 = {0xf800, 0x7e0, 0x1f};

TEST(BmpDecoder, ReadsPalettesAndLeavesOutWhatTheyLack)
{
    expectPictures({
        {"old header, entries of three bytes",
         BmpFile{.headerBytes = 12, .bits = 1, .palette = {1, 2, 3, 4, 5, 6}, .body = {0x40, 0, 0, 0}}
             .write(),
         {3, 2, 1, 255, 6, 5, 4, 255}},
        {"1 bit",
         BmpFile{.bits = 1, .palette = twoColors, .body = {0x40, 0, 0, 0}}.write(),
         {3, 2, 1, 255, 6, 5, 4, 255}},
        {"4 bits, an index behind the palette",
         BmpFile{.bits = 4, .palette = twoColors, .body = {0x12, 0, 0, 0}}.write(),
         {6, 5, 4, 255, 0, 0, 0, 0}},
        {"8 bits, from below",
         BmpFile{.height = 2, .palette = twoColors, .body = {0, 1, 0, 0, 1, 200, 0, 0}}.write(),
         {6, 5, 4, 255, 0, 0, 0, 0, 3, 2, 1, 255, 6, 5, 4, 255}},
        {"8 bits, from the top, a longer header",
         BmpFile{.headerBytes = 64, .height = -2, .palette = twoColors, .body = {0, 1, 0, 0, 1, 200, 0, 0}}
             .write(),
         {3, 2, 1, 255, 6, 5, 4, 255, 6, 5, 4, 255, 0, 0, 0, 0}},
    });
}

TEST(BmpDecoder, ReadsColorsByTheirMasks)
{
    const Bytes pixel565 = {0xff, 0x07, 0x10, 0xfc};
    const Bytes alphas = {1, 2, 3, 0, 4, 5, 6, 9};
    const Bytes noAlphas = {1, 2, 3, 0, 4, 5, 6, 0};
    const Bytes opaque = {3, 2, 1, 255, 6, 5, 4, 255};
    expectPictures({
        {"5 bits each",
         BmpFile{.bits = 16, .body = {0x10, 0x42, 0, 0xfc}}.write(),
         {132, 132, 132, 255, 255, 0, 0, 255}},
        {"masks behind the header",
         BmpFile{.bits = 16, .compression = 3, .masks = masks565, .body = pixel565}.write(),
         {0, 255, 255, 255, 255, 130, 132, 255}},
        {"masks in the header",
         BmpFile{.headerBytes = 56, .bits = 16, .compression = 3, .masks = masks565, .body = pixel565}
             .write(),
         {0, 255, 255, 255, 255, 130, 132, 255}},
        {"10 bits each, and alpha of 2",
         BmpFile{.headerBytes = 124,
                 .width = 1,
                 .bits = 32,
                 .compression = 3,
                 .masks = {0x3ff00000, 0xffc00, 0x3ff, 0xc0000000},
                 .body = {0xff, 3, 0, 0x40}}
             .write(),
         {0, 0, 255, 85}},
        {"24 bits", BmpFile{.bits = 24, .body = {1, 2, 3, 4, 5, 6, 0, 0}}.write(), opaque},
        {"32 bits with alpha", BmpFile{.bits = 32, .body = alphas}.write(), {3, 2, 1, 0, 6, 5, 4, 9}},
        {"32 bits, alpha never set", BmpFile{.bits = 32, .body = noAlphas}.write(), opaque},
    });
}

TEST(BmpDecoder, ReadsRunsAndLeavesOutWhatTheySkip)
{
    const Bytes a = {3, 2, 1, 255}; // what the palette has
    const Bytes b = {6, 5, 4, 255};
    const Bytes o = {0, 0, 0, 0};
    const auto join = [](std::initializer_list<Bytes> pixels) {
        Bytes all;
        for (const Bytes& pixel : pixels)
            all.insert(all.end(), pixel.begin(), pixel.end());
        return all;
    };
    const BmpFile eight{.width = 4, .height = 3, .compression = 1, .palette = twoColors};
    BmpFile runs = eight;
    runs.body = {3, 1, 0, 0, /* skipped: 1 right, 1 up */ 0, 2, 1, 1, /* literal */ 0, 3, 0, 1, 9, 0, 0, 1};
    BmpFile longRun = eight;
    longRun.body = {200, 0, 0, 0, 1, 1, 0, 0, 0, 3, 1, 0, 1, 0, 1, 1, 0, 1};
    BmpFile four{.width = 5, .height = 1, .bits = 4, .compression = 2, .palette = twoColors};
    four.body = {3, 0x01, 0, 3, 0x10, 0x00, 0, 1};
    expectPictures({
        {"8 bits", runs.write(), join({o, a, b, o, o, o, o, o, b, b, b, o})},
        {"8 bits, a run beyond the row", longRun.write(), join({b, a, b, b, b, o, o, o, a, a, a, a})},
        {"4 bits, whose halves take turns", four.write(), join({a, b, a, b, a})},
    });
}

TEST(TgaDecoder, ReadsEveryDepthFromEveryCorner)
{
    const Bytes two = {1, 2, 3, 4, 5, 6};
    expectPictures({
        {"from the top", TgaFile{.body = two}.write(), {3, 2, 1, 255, 6, 5, 4, 255}},
        {"from below",
         TgaFile{.width = 1, .height = 2, .origin = 0, .body = two}.write(),
         {6, 5, 4, 255, 3, 2, 1, 255}},
        {"from the right", TgaFile{.origin = 0x30, .body = two}.write(), {6, 5, 4, 255, 3, 2, 1, 255}},
        {"15 bits",
         TgaFile{.bits = 15, .body = {0x10, 0x42, 0, 0xfc}}.write(),
         {132, 132, 132, 255, 255, 0, 0, 255}},
        {"32 bits", TgaFile{.bits = 32, .body = {1, 2, 3, 4, 5, 6, 7, 8}}.write(), {3, 2, 1, 4, 7, 6, 5, 8}},
        {"grey", TgaFile{.type = 3, .bits = 8, .body = {7, 9}}.write(), {7, 7, 7, 255, 9, 9, 9, 255}},
        {"grey and alpha",
         TgaFile{.type = 3, .bits = 16, .body = {7, 9, 1, 2}}.write(),
         {7, 7, 7, 9, 1, 1, 1, 2}},
        {"a palette that nobody reads",
         TgaFile{.mapLength = 1, .mapBits = 24, .body = {9, 9, 9, 1, 2, 3, 4, 5, 6}}.write(),
         {3, 2, 1, 255, 6, 5, 4, 255}},
    });
}

TEST(TgaDecoder, ReadsPalettesAndRuns)
{
    const TgaFile map{.type = 1, .width = 3, .bits = 8, .mapOrigin = 2, .mapLength = 2, .mapBits = 24};
    TgaFile indexed = map;
    indexed.body = {1, 2, 3, 4, 5, 6, /* 1 and 4 aren't in it */ 3, 1, 4};
    TgaFile wide = map;
    wide.bits = 16;
    wide.body = {1, 2, 3, 4, 5, 6, 2, 0, 3, 1, 3, 0};
    TgaFile crossing{.type = 11, .width = 3, .height = 2, .bits = 8, .origin = 0};
    crossing.body = {0, 10, /* four of it, over two rows */ 0x83, 20, /* one wanted */ 1, 30, 40};
    expectPictures({
        {"palette", indexed.write(), {6, 5, 4, 255, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"palette, wide indices", wide.write(), {3, 2, 1, 255, 0, 0, 0, 0, 6, 5, 4, 255}},
        {"runs across rows", crossing.write(), {20, 20, 20, 255, 20, 20, 20, 255, 30, 30, 30, 255,
                                                10, 10, 10, 255, 20, 20, 20, 255, 20, 20, 20, 255}},
    });
}

TEST(RowFormats, SayWhyAFileIsRefused)
{
    TgaFile runs{.type = 10, .body = {0x80, 1, 2, 3}};
    const struct
    {
        Bytes file;
        const char* error;
    } cases[] = {
        {BmpFile{.headerBytes = 13}.write(), "bmp with a damaged header"},
        {BmpFile{.bits = 16, .compression = 3, .masks = {0, 0, 0}}.write(), "bmp with a damaged header"},
        {BmpFile{.bits = 3}.write(), "bmp of 3 bits a pixel with compression 0 is not supported"},
        {BmpFile{.compression = 4}.write(), "bmp of 8 bits a pixel with compression 4 is not supported"},
        {BmpFile{.height = -1, .compression = 1}.write(),
         "bmp of 8 bits a pixel with compression 1, from the top, is not supported"},
        {BmpFile{.height = 2, .compression = 1, .body = {2, 1, 0, 0, 1, 1}}.write(),
         "bmp ends early, at byte 60"},
        {BmpFile{.body = {1}}.write(), "bmp of 2 by 1 pixels in 55 bytes, at least 56 are needed"},
        {TgaFile{.type = 1, .bits = 8, .mapBits = 24}.write(), "tga without its palette"},
        {TgaFile{.body = {1, 2, 3, 4, 5}}.write(),
         "tga of 2 by 1 pixels in 26 bytes, at least 27 are needed"},
        {runs.write(), "tga ends early, at byte 25"},
    };
    for (const auto& c : cases) {
        std::string error;
        EXPECT_FALSE(decodeImage(c.file, error));
        EXPECT_EQ(error, c.error);
    }
}

} // namespace
} // namespace helvantine::test
