// SPDX-License-Identifier: MIT
#include "image/PictureDecoders.h"
#include "image/PixelChannel.h"
#include "image/SourceReader.h"

#include <helvantine/core/Text.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace helvantine
{

namespace
{

constexpr uint64_t headerBytes = 18;
constexpr unsigned runFlag = 8; ///< of the type
constexpr unsigned mostInPacket = 128;

enum Content : unsigned
{
    Indexed = 1,
    Colored = 2,
    Grey = 3
};

using Pixel = std::array<uint8_t, rgbaBytes>;

/// What the header says.
struct Description
{
    bool hasMap = false;
    unsigned content = 0;
    bool hasRuns = false;
    unsigned mapOrigin = 0; ///< index of the map's first entry
    unsigned mapLength = 0;
    unsigned mapBits = 0;
    unsigned width = 0;
    unsigned height = 0;
    unsigned bits = 0;
    bool fromTop = false;
    bool fromRight = false;
    uint64_t mapOffset = 0;

    unsigned countMapBytes() const { return (mapBits + 7) / 8; }
    unsigned countPixelBytes() const { return (bits + 7) / 8; }
    uint64_t countPixels() const { return uint64_t(width) * height; }
    uint64_t getPixelOffset() const
    {
        return mapOffset + (hasMap ? uint64_t(mapLength) * countMapBytes() : 0);
    }
};

bool isColorDepth(unsigned bits)
{
    return bits == 8 || bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

/// Null: the header can't be one of a tga file.
std::optional<Description> readDescription(ImageSource& source)
{
    if (source.getSize() < headerBytes)
        return std::nullopt;
    Description tga;
    const unsigned mapType = source.readByte(1);
    const unsigned type = source.readByte(2);
    tga.hasMap = mapType == 1;
    tga.content = type & ~runFlag;
    tga.hasRuns = (type & runFlag) != 0;
    tga.mapOrigin = source.readShort(3);
    tga.mapLength = source.readShort(5);
    tga.mapBits = source.readByte(7);
    tga.width = source.readShort(12);
    tga.height = source.readShort(14);
    tga.bits = source.readByte(16);
    tga.fromRight = (source.readByte(17) & 0x10) != 0;
    tga.fromTop = (source.readByte(17) & 0x20) != 0;
    tga.mapOffset = headerBytes + source.readByte(0);

    const bool indexed = tga.content == Indexed;
    const bool pixels = indexed ? tga.bits == 8 || tga.bits == 16 : isColorDepth(tga.bits);
    const bool map = tga.hasMap ? isColorDepth(tga.mapBits) : mapType == 0 && !indexed;
    const bool known = indexed || tga.content == Colored || tga.content == Grey;
    if (!known || !pixels || !map || tga.width == 0 || tga.height == 0)
        return std::nullopt;
    return tga;
}

/// 15 and 16 bits are five for each colour: what the highest means, programs don't agree on.
Pixel readColor(const uint8_t* bytes, unsigned bits)
{
    if (bits == 8)
        return {bytes[0], bytes[0], bytes[0], 255};
    if (bits >= 24)
        return {bytes[2], bytes[1], bytes[0], bits == 32 ? bytes[3] : uint8_t(255)};
    const uint32_t pixel = uint32_t(bytes[0]) | uint32_t(bytes[1]) << 8;
    return {PixelChannel(0x7c00, 0).extract(pixel), PixelChannel(0x3e0, 0).extract(pixel),
            PixelChannel(0x1f, 0).extract(pixel), 255};
}

class TgaDecoder final : public ImageDecoder
{
public:
    TgaDecoder(ImageSource& source, const Description& tga) : m_source(source), m_tga(tga)
    {
        describePicture(m_header, "tga", tga.width, tga.height);
    }

    uint64_t countLeastBytes() const
    {
        const uint64_t pixelBytes = m_tga.countPixelBytes();
        const uint64_t packets = (m_tga.countPixels() + mostInPacket - 1) / mostInPacket;
        return m_tga.getPixelOffset() +
               (m_tga.hasRuns ? packets * (1 + pixelBytes) : m_tga.countPixels() * pixelBytes);
    }

    bool decode(ImageSink* sink, std::string& error) override;

private:
    /// Where the packet lies that holds a row's first pixel, and how many pixels of the row above it holds.
    struct RowStart
    {
        uint64_t offset = 0;
        unsigned skipped = 0;
    };

    void readMap();
    bool findRows();
    bool readRow(unsigned stored, std::vector<uint8_t>& row);
    void readRuns(const RowStart& start, std::vector<uint8_t>& row);
    void convertRow(const uint8_t* stored, uint8_t* out) const;
    Pixel convert(const uint8_t* stored) const;

    ImageSource& m_source;
    Description m_tga;
    std::vector<Pixel> m_map;
    std::vector<RowStart> m_rows; ///< of a file with runs
};

bool TgaDecoder::decode(ImageSink* sink, std::string& error)
{
    if (m_tga.hasRuns && !findRows())
        return failAtEnd(m_header, m_source, error);
    if (!sink)
        return true;
    if (m_tga.content == Indexed)
        readMap();
    std::vector<uint8_t> stored(size_t(m_tga.width) * m_tga.countPixelBytes());
    std::vector<uint8_t> row(m_tga.width * rgbaBytes);
    for (unsigned y = 0; y < m_tga.height; ++y) {
        if (!readRow(m_tga.fromTop ? y : m_tga.height - 1 - y, stored))
            return failAtEnd(m_header, m_source, error);
        convertRow(stored.data(), row.data());
        if (!sink->putRow(0, 0, y, row.data()))
            return false;
    }
    return true;
}

void TgaDecoder::readMap()
{
    m_map.resize(m_tga.mapLength);
    const unsigned entryBytes = m_tga.countMapBytes();
    for (unsigned i = 0; i < m_tga.mapLength; ++i) {
        const std::span<const uint8_t> entry =
            m_source.view(m_tga.mapOffset + uint64_t(i) * entryBytes, entryBytes);
        if (entry.size() == entryBytes)
            m_map[i] = readColor(entry.data(), m_tga.mapBits);
    }
}

/// Packets may cross the ends of rows. False if the file ends before its last pixel.
bool TgaDecoder::findRows()
{
    m_rows.resize(m_tga.height);
    SourceReader reader(m_source, m_tga.getPixelOffset());
    uint64_t pixel = 0;
    unsigned row = 0;
    while (pixel < m_tga.countPixels()) {
        const uint64_t offset = reader.getOffset();
        const unsigned head = reader.next();
        const uint64_t left = m_tga.countPixels() - pixel;
        const uint64_t count = std::min<uint64_t>(1 + head % mostInPacket, left);
        reader.skip((head >= mostInPacket ? 1 : count) * m_tga.countPixelBytes());
        if (reader.hasEnded())
            return false;
        for (; row < m_tga.height && uint64_t(row) * m_tga.width < pixel + count; ++row)
            m_rows[row] = {offset, static_cast<unsigned>(uint64_t(row) * m_tga.width - pixel)};
        pixel += count;
    }
    return true;
}

bool TgaDecoder::readRow(unsigned stored, std::vector<uint8_t>& row)
{
    if (m_tga.hasRuns) {
        readRuns(m_rows[stored], row);
        return true;
    }
    const std::span<const uint8_t> bytes =
        m_source.view(m_tga.getPixelOffset() + uint64_t(stored) * row.size(), row.size());
    std::copy(bytes.begin(), bytes.end(), row.begin());
    return bytes.size() == row.size();
}

void TgaDecoder::readRuns(const RowStart& start, std::vector<uint8_t>& row)
{
    const size_t pixelBytes = m_tga.countPixelBytes();
    SourceReader reader(m_source, start.offset);
    size_t skipped = start.skipped;
    for (size_t at = 0; at < row.size(); skipped = 0) {
        const unsigned head = reader.next();
        const size_t bytes = (1 + head % mostInPacket - skipped) * pixelBytes;
        const size_t end = std::min(at + bytes, row.size());
        const bool run = head >= mostInPacket;
        if (!run)
            reader.skip(skipped * pixelBytes);
        for (const size_t first = at; at < end; ++at)
            row[at] = run && at >= first + pixelBytes ? row[at - pixelBytes] : reader.next();
    }
}

Pixel TgaDecoder::convert(const uint8_t* stored) const
{
    if (m_tga.content == Indexed) {
        const unsigned index = m_tga.bits == 8 ? stored[0] : stored[0] | unsigned(stored[1]) << 8;
        const unsigned entry = index - m_tga.mapOrigin; // wraps for those before the map
        return entry < m_map.size() ? m_map[entry] : Pixel{};
    }
    if (m_tga.content == Grey && m_tga.bits == 16)
        return {stored[0], stored[0], stored[0], stored[1]};
    return readColor(stored, m_tga.bits);
}

void TgaDecoder::convertRow(const uint8_t* stored, uint8_t* out) const
{
    const size_t pixelBytes = m_tga.countPixelBytes();
    for (unsigned x = 0; x < m_tga.width; ++x, stored += pixelBytes) {
        const unsigned target = m_tga.fromRight ? m_tga.width - 1 - x : x;
        std::memcpy(out + target * rgbaBytes, convert(stored).data(), rgbaBytes);
    }
}

} // namespace

std::unique_ptr<ImageDecoder> openTga(ImageSource& source, std::string& error)
{
    const std::optional<Description> tga = readDescription(source);
    if (!tga) {
        error = "not a png, bmp, tga, jpg or dds file";
        return nullptr;
    }
    if (!checkSides("tga", tga->width, tga->height, error))
        return nullptr;
    if (tga->content == Indexed && tga->mapLength == 0) {
        error = "tga without its palette";
        return nullptr;
    }
    auto decoder = std::make_unique<TgaDecoder>(source, *tga);
    const bool whole = checkLeastBytes(decoder->getHeader(), source, decoder->countLeastBytes(), error);
    return whole ? std::move(decoder) : nullptr;
}

} // namespace helvantine
