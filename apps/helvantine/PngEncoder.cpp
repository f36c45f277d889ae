// SPDX-License-Identifier: MIT
#include "PngEncoder.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

namespace helvantine::tool
{

namespace
{

constexpr std::size_t channels = 3;
constexpr int compressionLevel = 1; ///< of libdeflate; level 6 saves a tenth for three times the time

using Row = uint8_t*;

/// Each writes a row as differences from what the decoder knows already. Bytes left of the row and above the picture
/// count as 0: rows have a pixel of zeros in front.
void filterSub(const uint8_t* row, const uint8_t*, std::size_t size, Row out)
{
    for (std::size_t i = 0; i < size; ++i)
        out[i] = static_cast<uint8_t>(row[i] - row[i - channels]);
}

void filterUp(const uint8_t* row, const uint8_t* above, std::size_t size, Row out)
{
    for (std::size_t i = 0; i < size; ++i)
        out[i] = static_cast<uint8_t>(row[i] - above[i]);
}

void filterNone(const uint8_t* row, const uint8_t*, std::size_t size, Row out)
{
    std::copy_n(row, size, out);
}

/// By the number that stands in the file. The other two there are make rendered pictures no smaller.
constexpr std::array filters = {filterNone, filterSub, filterUp};

/// The sum of the differences as signed numbers: what is near 0 compresses well.
unsigned measure(const uint8_t* row, std::size_t size)
{
    unsigned sum = 0;
    for (std::size_t i = 0; i < size; ++i)
        sum += static_cast<unsigned>(std::abs(static_cast<int8_t>(row[i])));
    return sum;
}

void takeRow(const uint8_t* pixels, std::size_t width, Row row)
{
    for (std::size_t x = 0; x < width; ++x) {
        row[channels * x] = pixels[4 * x + 2];
        row[channels * x + 1] = pixels[4 * x + 1];
        row[channels * x + 2] = pixels[4 * x];
    }
}

void putNumber(uint32_t number, uint8_t* to)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<uint8_t>(number >> (24 - 8 * i));
}

constexpr std::size_t chunkFrame = 12; ///< length, type and check sum
constexpr std::size_t headerSize = 13;
constexpr uint8_t signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

/// Frames the bytes that stand at `chunk` + 8 already. Returns where the next chunk goes.
uint8_t* closeChunk(uint8_t* chunk, const char* type, std::size_t size)
{
    putNumber(static_cast<uint32_t>(size), chunk);
    std::memcpy(chunk + 4, type, 4);
    putNumber(libdeflate_crc32(0, chunk + 4, size + 4), chunk + 8 + size);
    return chunk + chunkFrame + size;
}

} // namespace

struct PngEncoder::Deflate
{
    ~Deflate() { libdeflate_free_compressor(compressor); }

    libdeflate_compressor* compressor = libdeflate_alloc_compressor(compressionLevel);
};

PngEncoder::PngEncoder() : m_deflate(std::make_unique<Deflate>()) {}

PngEncoder::~PngEncoder() = default;

/// A filtered row is shorter than its pixels, so it never reaches those that are still to be read.
std::size_t PngEncoder::filterRows(std::vector<uint8_t>& pixels, FrameSize size)
{
    const std::size_t rowSize = channels * size.width;
    const std::size_t stride = channels + rowSize;
    m_rows.assign(stride * (2 + filters.size()), 0);
    Row row = m_rows.data() + channels;
    Row above = row + stride;
    uint8_t* out = pixels.data();
    for (std::size_t y = 0; y < size.height; ++y) {
        takeRow(pixels.data() + 4 * y * size.width, size.width, row);
        std::size_t best = 0;
        unsigned least = UINT_MAX;
        for (std::size_t i = 0; i < filters.size(); ++i) {
            Row candidate = m_rows.data() + (2 + i) * stride;
            filters[i](row, above, rowSize, candidate);
            if (const unsigned sum = measure(candidate, rowSize); sum < least) {
                least = sum;
                best = i;
            }
        }
        *out++ = static_cast<uint8_t>(best);
        out = std::copy_n(m_rows.data() + (2 + best) * stride, rowSize, out);
        std::swap(row, above);
    }
    return static_cast<std::size_t>(out - pixels.data());
}

std::span<const uint8_t> PngEncoder::encode(std::vector<uint8_t>& pixels, FrameSize size)
{
    if (size.width == 0 || size.height == 0 || pixels.size() / 4 / size.width < size.height ||
        !m_deflate->compressor)
        return {};
    const std::size_t filtered = filterRows(pixels, size);
    const std::size_t bound = libdeflate_zlib_compress_bound(m_deflate->compressor, filtered);
    const std::size_t capacity = sizeof(signature) + 3 * chunkFrame + headerSize + bound;
    if (capacity > m_capacity) {
        m_file.reset(new (std::nothrow) uint8_t[capacity]);
        m_capacity = m_file ? capacity : 0;
    }
    if (!m_file)
        return {};
    uint8_t* chunk = std::copy(std::begin(signature), std::end(signature), m_file.get());
    putNumber(size.width, chunk + 8);
    putNumber(size.height, chunk + 12);
    constexpr uint8_t kind[] = {8, 2, 0, 0, 0}; // bits, RGB, and the only methods there are
    std::copy(std::begin(kind), std::end(kind), chunk + 16);
    chunk = closeChunk(chunk, "IHDR", headerSize);
    const std::size_t compressed =
        libdeflate_zlib_compress(m_deflate->compressor, pixels.data(), filtered, chunk + 8, bound);
    if (compressed == 0)
        return {};
    chunk = closeChunk(chunk, "IDAT", compressed);
    chunk = closeChunk(chunk, "IEND", 0);
    return {m_file.get(), chunk};
}

} // namespace helvantine::tool
