// SPDX-License-Identifier: MIT
#include "image/MipChain.h"

#include <cassert>

namespace helvantine
{

namespace
{

constexpr unsigned channels = 4;

/// The pixels of the larger level that one pixel of the next level covers, along one axis.
struct Span
{
    unsigned first;
    unsigned count;
    uint32_t weights[3];
    uint32_t total; ///< sum of the weights
};

/// An even side halves in pairs. An odd one, 2m + 1 pixels onto m, gives each of them 2 + 1/m: three pixels,
/// of which the outer two are shared with the neighbours.
Span getSpan(unsigned target, unsigned side)
{
    if (side == 1)
        return {0, 1, {1, 0, 0}, 1};
    const unsigned half = side / 2;
    if (side % 2 == 0)
        return {2 * target, 2, {1, 1, 0}, 2};
    return {2 * target, 3, {half - target, half, target + 1}, side};
}

void averageArea(const uint8_t* source, size_t rowBytes, const Span& across, const Span& down, uint8_t* out)
{
    const uint64_t total = uint64_t(across.total) * down.total;
    for (unsigned channel = 0; channel < channels; ++channel) {
        uint64_t sum = total / 2;
        for (unsigned y = 0; y < down.count; ++y) {
            const uint8_t* row = source + (down.first + y) * rowBytes + size_t(across.first) * channels;
            for (unsigned x = 0; x < across.count; ++x)
                sum += uint64_t(down.weights[y]) * across.weights[x] * row[x * channels + channel];
        }
        out[channel] = static_cast<uint8_t>(sum / total);
    }
}

/// The common case: both sides even.
void averagePairs(const uint8_t* row, size_t rowBytes, unsigned targetWidth, uint8_t* out)
{
    for (unsigned x = 0; x < targetWidth; ++x, row += 2 * channels, out += channels) {
        for (unsigned channel = 0; channel < channels; ++channel) {
            const uint8_t* pixel = row + channel;
            const unsigned sum = pixel[0] + pixel[channels] + pixel[rowBytes] + pixel[rowBytes + channels];
            out[channel] = static_cast<uint8_t>((sum + 2) / 4);
        }
    }
}

void generateMip(const ImageData::Level& larger, const uint8_t* source, const ImageData::Level& level,
                 uint8_t* target)
{
    const bool even = larger.width % 2 == 0 && larger.height % 2 == 0;
    for (unsigned y = 0; y < level.height; ++y) {
        uint8_t* out = target + y * level.rowBytes;
        if (even) {
            averagePairs(source + size_t(2) * y * larger.rowBytes, larger.rowBytes, level.width, out);
            continue;
        }
        const Span down = getSpan(y, larger.height);
        for (unsigned x = 0; x < level.width; ++x)
            averageArea(source, larger.rowBytes, getSpan(x, larger.width), down, out + size_t(x) * channels);
    }
}

} // namespace

void generateMips(ImageData& image)
{
    assert(getFormatLayout(image.format).blockBytes == channels && "mips are made of 8-bit RGBA only");
    for (unsigned face = 0; face < image.faceCount; ++face) {
        for (unsigned mip = 1; mip < image.mipCount; ++mip)
            generateMip(image.getLevel(face, mip - 1), image.getPixels(face, mip - 1),
                        image.getLevel(face, mip), image.getPixels(face, mip));
    }
}

} // namespace helvantine
