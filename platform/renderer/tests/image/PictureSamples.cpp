// SPDX-License-Identifier: MIT
#include "PictureSamples.h"

#include "DdsFile.h"
#include "RowFiles.h"

#include <algorithm>
#include <random>

namespace helvantine::test
{

std::vector<Bytes> makeSamples()
{
    const Bytes pixels = makePattern(13, 9);
    DdsFile cube{.mipCount = 4, .pixelFlags = 4, .fourCC = makeFourCC("DXT5"), .caps2 = 0xfe00};
    cube.pixels = makeBytes(6 * 7 * 16);
    DdsFile masked{.pixelFlags = 0x41, .bitCount = 16, .masks = {0x7c00, 0x3e0, 0x1f, 0x8000}};
    masked.pixels = makeBytes(8 * 8 * 2);
    DdsFile extended;
    extended.dxgiFormat = 98;
    extended.pixels = makeBytes(4 * 16);
    const Bytes skips = {1, 0, 0, 2, 0, 1, 3, 0, 0, 3, 0x10, 0, 0, 1};
    return {
        encodePng(13, 9, pixels),
        PngFile{.width = 13, .height = 9, .interlaced = true, .rows = pixels}.write(),
        PngFile{.width = 13, .height = 9, .colorType = 3, .rows = pixels, .palette = {1, 2, 3}}.write(),
        JpegFile{.width = 13, .height = 9, .scans = JpegFile::OneForEachComponent, .pixels = pixels}.write(),
        JpegFile{.width = 13, .height = 9, .scans = JpegFile::Progressive, .pixels = pixels}.write(),
        makeRunBmp(9, 5),
        BmpFile{
            .headerBytes = 12, .width = 8, .palette = {1, 2, 3, 4, 5, 6}, .body = {0, 1, 2, 3, 4, 5, 6, 7}}
            .write(),
        BmpFile{.bits = 16, .compression = 3, .masks = {0xf800, 0x7e0, 0x1f}, .body = {1, 2, 3, 4}}.write(),
        BmpFile{.height = 3, .bits = 4, .compression = 2, .palette = {1, 2, 3, 4}, .body = skips}.write(),
        makeRunTga(9, 5),
        TgaFile{.type = 1, .bits = 8, .mapLength = 1, .mapBits = 16, .body = {1, 2, 0, 1}}.write(),
        encodeBmp(13, 9, pixels),
        encodeTga(13, 9, pixels),
        encodeJpg(13, 9, pixels),
        cube.write(),
        masked.write(),
        extended.write()};
}

Bytes damage(const Bytes& file, unsigned seed)
{
    constexpr size_t headers = 200; // most changes would only change a colour otherwise
    std::mt19937 random(seed);
    Bytes damaged = file;
    for (unsigned change = random() % 4 + 1; change > 0; --change)
        damaged[random() % std::min(damaged.size(), headers)] = static_cast<uint8_t>(random());
    return damaged;
}

Bytes makeRunBmp(unsigned width, unsigned height)
{
    BmpFile bmp{
        .width = width, .height = static_cast<int>(height), .compression = 1, .palette = {1, 2, 3, 4}};
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; x += 255)
            bmp.body.insert(bmp.body.end(), {static_cast<uint8_t>(std::min(width - x, 255u)), 0});
        bmp.body.insert(bmp.body.end(), {0, static_cast<uint8_t>(y + 1 == height)});
    }
    return bmp.write();
}

Bytes makeRunTga(unsigned width, unsigned height)
{
    TgaFile tga{.type = 10, .width = width, .height = height, .bits = 32, .origin = 0};
    for (size_t left = size_t(width) * height; left > 0; left -= std::min<size_t>(left, 128))
        tga.body.insert(tga.body.end(),
                        {static_cast<uint8_t>(127 + std::min<size_t>(left, 128)), 1, 2, 3, 4});
    return tga.write();
}

} // namespace helvantine::test
