// SPDX-License-Identifier: MIT
#include "image/ImageDecoder.h"
#include "image/MipChain.h"

#include <helvantine/core/Text.h>

// Nothing of the library leaves this file. Its assertions are off: a damaged file is refused, not fatal.
#ifndef __clang_analyzer__ // the analysis is of our own code
#define STB_IMAGE_IMPLEMENTATION
#endif
#define STB_IMAGE_STATIC
#define STBI_ASSERT(condition) ((void)0)
#define STBI_NO_STDIO
#define STBI_NO_HDR
#define STBI_NO_LINEAR
#define STBI_ONLY_PNG
#define STBI_ONLY_BMP
#define STBI_ONLY_TGA
#define STBI_ONLY_JPEG
#include <stb/stb_image.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace helvantine
{

namespace
{

constexpr unsigned bytesPerPixel = 4;
constexpr uint64_t bestDeflateRatio = 1032; ///< bytes that one byte of a deflate stream can stand for
constexpr unsigned maxJpegScans = 64;       ///< each costs a pass over the image; encoders write about ten

using Bytes = std::span<const uint8_t>;

/// The byte at an offset, 0 behind the end, little-endian.
unsigned readByte(Bytes file, size_t offset)
{
    return offset < file.size() ? file[offset] : 0;
}
unsigned readShort(Bytes file, size_t offset)
{
    return readByte(file, offset) | readByte(file, offset + 1) << 8;
}
uint32_t readLong(Bytes file, size_t offset)
{
    return readShort(file, offset) | uint32_t(readShort(file, offset + 2)) << 16;
}

bool startsWith(Bytes file, std::string_view magic)
{
    return file.size() >= magic.size() && std::memcmp(file.data(), magic.data(), magic.size()) == 0;
}

bool isPng(Bytes file)
{
    return startsWith(file, "\x89PNG\r\n\x1a\n");
}
bool isBmp(Bytes file)
{
    return startsWith(file, "BM");
}
bool isJpeg(Bytes file)
{
    return startsWith(file, "\xff\xd8") || startsWith(file, "\xff\xff");
}
bool isTga(Bytes)
{
    return true;
} // has no mark at its start

uint64_t leastPngBytes(Bytes file, unsigned width, unsigned height)
{
    constexpr unsigned channelsOfType[] = {1, 1, 3, 1, 2, 1, 4};
    const unsigned depth = readByte(file, 24);
    const unsigned type = std::min(readByte(file, 25), 6u);
    const uint64_t rowBytes = (uint64_t(width) * depth * channelsOfType[type] + 7) / 8 + 1;
    return rowBytes * height / bestDeflateRatio;
}

uint64_t leastBmpBytes(Bytes file, unsigned width, unsigned height)
{
    constexpr uint32_t oldHeaderSize = 12;
    const unsigned bits = readShort(file, readLong(file, 14) == oldHeaderSize ? 24 : 28);
    const uint64_t rowBytes = (uint64_t(width) * bits + 7) / 8;
    return readLong(file, 10) + (rowBytes + 3) / 4 * 4 * (height - 1) + rowBytes;
}

uint64_t leastTgaBytes(Bytes file, unsigned width, unsigned height)
{
    constexpr unsigned packedTypes = 8; // and above: run-length coded
    constexpr unsigned pixelsOfPacket = 128;
    constexpr unsigned headerSize = 18;
    const unsigned pixelBytes = (readByte(file, 16) + 7) / 8;
    const uint64_t pixels = uint64_t(width) * height;
    if (readByte(file, 2) < packedTypes)
        return headerSize + pixels * pixelBytes;
    return headerSize + (pixels + pixelsOfPacket - 1) / pixelsOfPacket * (1 + pixelBytes);
}

/// The shortest code of a block of 8 by 8 pixels is one bit.
uint64_t leastJpegBytes(Bytes, unsigned width, unsigned height)
{
    return uint64_t((width + 7) / 8) * ((height + 7) / 8) / 8;
}

struct PictureFormat
{
    const char* name;
    bool (*matches)(Bytes file);
    /// A lower bound for the size of a file with so many pixels, so that a small file can't ask for much.
    uint64_t (*leastBytes)(Bytes file, unsigned width, unsigned height);
};

constexpr PictureFormat formats[] = {
    {"png", isPng, leastPngBytes},
    {"bmp", isBmp, leastBmpBytes},
    {"jpg", isJpeg, leastJpegBytes},
    {"tga", isTga, leastTgaBytes},
};

const PictureFormat& detectFormat(Bytes file)
{
    return *std::find_if(std::begin(formats), std::end(formats),
                         [file](const PictureFormat& format) { return format.matches(file); });
}

unsigned countJpegScans(Bytes file)
{
    constexpr uint8_t startOfScan[] = {0xff, 0xda};
    unsigned scans = 0;
    auto at = file.begin();
    while ((at = std::search(at, file.end(), std::begin(startOfScan), std::end(startOfScan))) != file.end()) {
        ++scans;
        ++at;
    }
    return scans;
}

/// Reads the size and holds it against the limits and the bytes there.
bool checkPicture(Bytes file, unsigned& width, unsigned& height, std::string& error)
{
    if (file.size() > INT_MAX) {
        error = formatString("file of %llu bytes, at most %d can be read",
                             static_cast<unsigned long long>(file.size()), INT_MAX);
        return false;
    }
    const PictureFormat& format = detectFormat(file);
    int x = 0;
    int y = 0;
    int channels = 0;
    if (!stbi_info_from_memory(file.data(), static_cast<int>(file.size()), &x, &y, &channels)) {
        error = format.matches == isTga ? "not a png, bmp, tga, jpg or dds file"
                                        : formatString("%s with a damaged header", format.name);
        return false;
    }
    // The height of a bmp is negative when its rows go from the top.
    width = static_cast<unsigned>(x);
    height = y < 0 ? 0u - static_cast<unsigned>(y) : static_cast<unsigned>(y);
    if (width == 0 || height == 0 || width > maxImageSide || height > maxImageSide) {
        error = formatString("%s of %u by %u pixels, sides from 1 to %u can be read", format.name, width,
                             height, maxImageSide);
        return false;
    }
    const uint64_t least = format.leastBytes(file, width, height);
    if (file.size() < least) {
        error = formatString("%s of %u by %u pixels in %llu bytes, at least %llu are needed", format.name,
                             width, height, static_cast<unsigned long long>(file.size()),
                             static_cast<unsigned long long>(least));
        return false;
    }
    if (isJpeg(file) && countJpegScans(file) > maxJpegScans) {
        error = formatString("jpg with %u scans, at most %u are read", countJpegScans(file), maxJpegScans);
        return false;
    }
    return true;
}

} // namespace

std::optional<ImageData> decodePicture(Bytes file, std::string& error)
{
    unsigned width = 0;
    unsigned height = 0;
    if (!checkPicture(file, width, height, error))
        return std::nullopt;

    int x = 0;
    int y = 0;
    int channels = 0;
    const std::unique_ptr<stbi_uc, decltype(&std::free)> pixels(
        stbi_load_from_memory(file.data(), static_cast<int>(file.size()), &x, &y, &channels, bytesPerPixel),
        &std::free);
    if (!pixels || static_cast<unsigned>(x) != width || static_cast<unsigned>(y) != height) {
        error = formatString("damaged %s: %s", detectFormat(file).name,
                             pixels ? "sizes differ" : stbi_failure_reason());
        return std::nullopt;
    }

    ImageData image;
    image.bytes.resize(image.layOut(DXGI_FORMAT_R8G8B8A8_UNORM, width, height, countMips(width, height), 1));
    std::memcpy(image.bytes.data(), pixels.get(), image.getLevel(0, 0).size);
    generateMips(image);
    return image;
}

} // namespace helvantine
