// SPDX-License-Identifier: MIT
#include "DdsFile.h"
#include "image/ImageDecoder.h"

#include <gtest/gtest.h>

namespace helvantine::test
{
namespace
{

struct StoredFormat
{
    const char* name;
    uint32_t fourCC;     ///< of the old header, or
    uint32_t dxgiFormat; ///< of the extended one
    DXGI_FORMAT expected;
    unsigned chainBytes; ///< of 10 by 6 pixels with four mips: 10x6, 5x3, 2x1, 1x1
};

constexpr unsigned pixelsOfChain = 60 + 15 + 2 + 1;
constexpr unsigned blocksOfChain = 6 + 2 + 1 + 1;

TEST(DdsDecoder, KeepsStoredFormatsAsTheyAre)
{
    const StoredFormat formats[] = {
        {"DXT1", makeFourCC("DXT1"), 0, DXGI_FORMAT_BC1_UNORM, blocksOfChain * 8},
        {"DXT3", makeFourCC("DXT3"), 0, DXGI_FORMAT_BC2_UNORM, blocksOfChain * 16},
        {"DXT5", makeFourCC("DXT5"), 0, DXGI_FORMAT_BC3_UNORM, blocksOfChain * 16},
        {"ATI1", makeFourCC("ATI1"), 0, DXGI_FORMAT_BC4_UNORM, blocksOfChain * 8},
        {"BC4S", makeFourCC("BC4S"), 0, DXGI_FORMAT_BC4_SNORM, blocksOfChain * 8},
        {"ATI2", makeFourCC("ATI2"), 0, DXGI_FORMAT_BC5_UNORM, blocksOfChain * 16},
        {"BC5S", makeFourCC("BC5S"), 0, DXGI_FORMAT_BC5_SNORM, blocksOfChain * 16},
        {"half", 111, 0, DXGI_FORMAT_R16_FLOAT, pixelsOfChain * 2},
        {"four halves", 113, 0, DXGI_FORMAT_R16G16B16A16_FLOAT, pixelsOfChain * 8},
        {"float", 114, 0, DXGI_FORMAT_R32_FLOAT, pixelsOfChain * 4},
        {"four floats", 116, 0, DXGI_FORMAT_R32G32B32A32_FLOAT, pixelsOfChain * 16},
        {"rgba", 0, 28, DXGI_FORMAT_R8G8B8A8_UNORM, pixelsOfChain * 4},
        {"bgra", 0, 87, DXGI_FORMAT_B8G8R8A8_UNORM, pixelsOfChain * 4},
        {"bc6h", 0, 95, DXGI_FORMAT_BC6H_UF16, blocksOfChain * 16},
        {"bc6h signed", 0, 96, DXGI_FORMAT_BC6H_SF16, blocksOfChain * 16},
        {"bc7", 0, 98, DXGI_FORMAT_BC7_UNORM, blocksOfChain * 16},
    };
    for (const StoredFormat& format : formats) {
        SCOPED_TRACE(format.name);
        DdsFile dds{.width = 10, .height = 6, .mipCount = 4, .fourCC = format.fourCC};
        dds.dxgiFormat = format.dxgiFormat;
        dds.pixels = makeBytes(format.chainBytes);
        std::string error;
        const auto image = decodeImage(dds.write(), error);
        ASSERT_TRUE(image) << error;
        EXPECT_EQ(image->format, format.expected);
        EXPECT_EQ(image->mipCount, 4u);
        EXPECT_EQ(image->getLevel(0, 2).width, 2u);
        EXPECT_EQ(image->getLevel(0, 2).height, 1u);
        EXPECT_EQ(image->bytes, dds.pixels);
    }
}

TEST(DdsDecoder, UnpacksPixelsByTheirMasks)
{
    const struct
    {
        const char* name;
        uint32_t flags;
        uint32_t bits;
        uint32_t masks[4];
        Bytes pixel;
        Bytes expected;
    } cases[] = {
        {"bgrx", 0x40, 32, {0xff0000, 0xff00, 0xff, 0}, {1, 2, 3, 0}, {3, 2, 1, 255}},
        {"argb", 0x41, 32, {0xff00, 0xff0000, 0xff000000, 0xff}, {9, 1, 2, 3}, {1, 2, 3, 9}},
        {"bgr", 0x40, 24, {0xff0000, 0xff00, 0xff, 0}, {1, 2, 3}, {3, 2, 1, 255}},
        {"rgb", 0x40, 24, {0xff, 0xff00, 0xff0000, 0}, {1, 2, 3}, {1, 2, 3, 255}},
        {"565", 0x40, 16, {0xf800, 0x7e0, 0x1f, 0}, {0xff, 0x07}, {0, 255, 255, 255}},
        {"1555", 0x41, 16, {0x7c00, 0x3e0, 0x1f, 0x8000}, {0x10, 0xc0}, {132, 0, 132, 255}},
        {"4444", 0x41, 16, {0xf00, 0xf0, 0xf, 0xf000}, {0x23, 0x41}, {17, 34, 51, 68}},
        {"10 bits", 0x41, 32, {0x3ff, 0xffc00, 0x3ff00000, 0xc0000000}, {0xff, 3, 0, 0x40}, {255, 0, 0, 85}},
        {"grey", 0x20000, 8, {0xff, 0, 0, 0}, {77}, {77, 77, 77, 255}},
        {"grey and alpha", 0x20001, 16, {0xff, 0, 0, 0xff00}, {77, 5}, {77, 77, 77, 5}},
        {"alpha", 2, 8, {0, 0, 0, 0xff}, {9}, {0, 0, 0, 9}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        DdsFile dds{.width = 1, .height = 1, .pixelFlags = c.flags, .bitCount = c.bits};
        std::copy(std::begin(c.masks), std::end(c.masks), dds.masks);
        dds.pixels = c.pixel;
        std::string error;
        const auto image = decodeImage(dds.write(), error);
        ASSERT_TRUE(image) << error;
        EXPECT_EQ(image->format, DXGI_FORMAT_R8G8B8A8_UNORM);
        EXPECT_EQ(image->bytes, c.expected);
    }
}

TEST(DdsDecoder, CubesHaveSixFacesEachWithItsMips)
{
    constexpr unsigned faceBytes = 4 * 8 + 8 + 8 + 8; // 8x8, 4x4, 2x2, 1x1 in blocks
    DdsFile legacy{.mipCount = 4, .fourCC = makeFourCC("DXT1"), .caps2 = 0xfe00};
    DdsFile extended{.mipCount = 4};
    extended.dxgiFormat = 71;
    extended.miscFlags = 4;
    for (DdsFile& dds : {std::ref(legacy), std::ref(extended)}) {
        dds.pixels = makeBytes(6 * faceBytes);
        std::string error;
        const auto image = decodeImage(dds.write(), error);
        ASSERT_TRUE(image) << error;
        EXPECT_EQ(image->faceCount, 6u);
        EXPECT_EQ(image->mipCount, 4u);
        EXPECT_EQ(image->getLevel(5, 1).offset, 5 * faceBytes + 32);
        EXPECT_EQ(image->bytes, dds.pixels);
    }
}

TEST(DdsDecoder, SaysWhyAFileIsRefused)
{
    const DdsFile good{.fourCC = makeFourCC("DXT1"), .pixels = makeBytes(32)};
    struct Case
    {
        const char* error;
        DdsFile dds;
    };
    std::vector<Case> cases;
    const auto add = [&](const char* error) -> DdsFile& { return cases.emplace_back(Case{error, good}).dds; };
    add("dds of 0 by 8 pixels, sides from 1 to 16384 can be read").width = 0;
    add("dds of 8 by 16385 pixels, sides from 1 to 16384 can be read").height = 16385;
    add("dds of 8 by 8 pixels with 5 mips, at most 4 fit").mipCount = 5;
    add("dds of 8 by 8 pixels with 4294967295 mips, at most 4 fit").mipCount = 0xffffffff;
    add("dds needs 40 bytes of pixels, 32 are there").mipCount = 2;
    add("dds needs 192 bytes of pixels, 32 are there").caps2 = 0xfe00;
    add("dds cube without all six faces").caps2 = 0x600;
    add("dds holds a volume, only 2D images and cubes are read").caps2 = 0x200000;
    add("dds format with code 0x30313233 is not supported").fourCC = 0x30313233;
    add("dds with pixel format flags 0x0 is not supported").pixelFlags = 0;
    add("dds with 12 bits a pixel is not supported").bitCount = 12;
    cases.back().dds.pixelFlags = 0x40;
    add("dds of DXGI format 61 is not supported").dxgiFormat = 61;
    DdsFile& array = add("dds of dimension 3 with 7 array slices, only single 2D images and cubes are read");
    array.dxgiFormat = 71;
    array.arraySize = 7;
    DdsFile& cube = add("dds cube of 8 by 4 pixels, its faces must be square");
    cube.caps2 = 0xfe00;
    cube.height = 4;

    for (const Case& c : cases) {
        std::string error;
        EXPECT_FALSE(decodeImage(c.dds.write(), error));
        EXPECT_EQ(error, c.error);
    }
}

} // namespace
} // namespace helvantine::test
