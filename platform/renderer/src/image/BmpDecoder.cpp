// SPDX-License-Identifier: MIT
#include "image/BmpRuns.h"
#include "image/PictureDecoders.h"
#include "image/PixelChannel.h"

#include <helvantine/core/Text.h>

#include <algorithm>
#include <cstring>

namespace helvantine
{

namespace
{

constexpr uint64_t fileHeaderBytes = 14;
constexpr uint32_t coreHeaderBytes = 12; ///< the oldest one: sides of 16 bits, palette entries of three bytes
constexpr uint32_t infoHeaderBytes = 40; ///< masks stand behind it, in longer ones within
constexpr uint32_t shortestInfoHeader = 16;
constexpr uint32_t longestHeader = 124;

enum Compression : uint32_t
{
    None = 0,
    Runs8 = 1,
    Runs4 = 2,
    Masks = 3,
    MasksWithAlpha = 6
};

/// What the headers say.
struct Description
{
    uint64_t pixelOffset = 0;
    uint32_t headerBytes = 0;
    unsigned width = 0;
    unsigned height = 0;
    bool fromTop = false;
    unsigned bits = 0;
    uint32_t compression = None;
    uint32_t colors = 0;                ///< 0: as many as there can be
    std::array<uint32_t, 4> masks = {}; ///< red, green, blue, alpha

    bool isIndexed() const { return bits <= 8; }
    bool hasRuns() const { return compression == Runs8 || compression == Runs4; }
    bool hasMasks() const { return compression == Masks || compression == MasksWithAlpha; }
    uint64_t countRowBytes() const { return (uint64_t(width) * bits + 31) / 32 * 4; }
};

void readSides(ImageSource& source, Description& bmp)
{
    if (bmp.headerBytes == coreHeaderBytes) {
        bmp.width = source.readShort(18);
        bmp.height = source.readShort(20);
        bmp.bits = source.readShort(24);
        return;
    }
    bmp.width = source.readLong(18);
    bmp.height = source.readLong(22);
    bmp.fromTop = (bmp.height & 0x80000000) != 0; // a negative height
    if (bmp.fromTop)
        bmp.height = 0u - bmp.height;
    bmp.bits = source.readShort(28);
    const auto readField = [&](uint32_t offset) {
        return offset + 4 <= fileHeaderBytes + bmp.headerBytes ? source.readLong(offset) : 0;
    };
    bmp.compression = readField(30);
    bmp.colors = readField(46);
}

void readMasks(ImageSource& source, Description& bmp)
{
    if (bmp.compression == None && bmp.bits == 16)
        bmp.masks = {0x7c00, 0x3e0, 0x1f, 0};
    if (bmp.compression == None && bmp.bits == 32)
        bmp.masks = {0xff0000, 0xff00, 0xff, 0xff000000};
    if (!bmp.hasMasks())
        return;
    const bool alpha = bmp.compression == MasksWithAlpha || bmp.headerBytes >= infoHeaderBytes + 16;
    for (unsigned i = 0; i < (alpha ? 4 : 3); ++i)
        bmp.masks[i] = source.readLong(fileHeaderBytes + infoHeaderBytes + 4 * i);
}

bool isKnown(const Description& bmp)
{
    switch (bmp.compression) {
    case None:
        return bmp.bits == 1 || bmp.bits == 2 || bmp.bits == 4 || bmp.bits == 8 || bmp.bits == 16 ||
               bmp.bits == 24 || bmp.bits == 32;
    case Runs8:
        return bmp.bits == 8 && !bmp.fromTop;
    case Runs4:
        return bmp.bits == 4 && !bmp.fromTop;
    default:
        return bmp.hasMasks() && (bmp.bits == 16 || bmp.bits == 32);
    }
}

bool readDescription(ImageSource& source, Description& bmp, std::string& error)
{
    bmp.pixelOffset = source.readLong(10);
    bmp.headerBytes = source.readLong(14);
    const bool length = bmp.headerBytes == coreHeaderBytes ||
                        (bmp.headerBytes >= shortestInfoHeader && bmp.headerBytes <= longestHeader);
    if (!length || source.getSize() < fileHeaderBytes + bmp.headerBytes ||
        bmp.pixelOffset < fileHeaderBytes + bmp.headerBytes)
    {
        error = "bmp with a damaged header";
        return false;
    }
    readSides(source, bmp);
    readMasks(source, bmp);
    if (bmp.hasMasks() && (bmp.masks[0] | bmp.masks[1] | bmp.masks[2] | bmp.masks[3]) == 0) {
        error = "bmp with a damaged header";
        return false;
    }
    if (!checkSides("bmp", bmp.width, bmp.height, error))
        return false;
    if (isKnown(bmp))
        return true;
    error = formatString("bmp of %u bits a pixel with compression %u%s is not supported", bmp.bits,
                         static_cast<unsigned>(bmp.compression), bmp.fromTop ? ", from the top," : "");
    return false;
}

/// The entries that lie before the pixels; all others are transparent black.
BmpPalette readPalette(ImageSource& source, const Description& bmp)
{
    BmpPalette palette{};
    const unsigned entryBytes = bmp.headerBytes == coreHeaderBytes ? 3 : 4;
    const uint64_t start = fileHeaderBytes + bmp.headerBytes;
    uint64_t count = std::min<uint64_t>(uint64_t(1) << bmp.bits, (bmp.pixelOffset - start) / entryBytes);
    if (bmp.colors > 0)
        count = std::min<uint64_t>(count, bmp.colors);
    for (uint64_t i = 0; i < count; ++i) {
        const std::span<const uint8_t> entry = source.view(start + i * entryBytes, entryBytes);
        if (entry.size() == entryBytes)
            palette[i] = {entry[2], entry[1], entry[0], 255};
    }
    return palette;
}

class BmpDecoder final : public ImageDecoder
{
public:
    BmpDecoder(ImageSource& source, const Description& bmp) : m_source(source), m_bmp(bmp)
    {
        describePicture(m_header, "bmp", bmp.width, bmp.height);
        if (bmp.isIndexed())
            m_palette = readPalette(source, bmp);
    }

    /// What the pixels take at least: the last row may lack what fills it up.
    uint64_t countLeastBytes() const
    {
        if (m_bmp.hasRuns())
            return m_bmp.pixelOffset;
        return m_bmp.pixelOffset + m_bmp.countRowBytes() * (m_bmp.height - 1) + countUsedBytes();
    }

    bool decode(ImageSink* sink, std::string& error) override
    {
        if (m_bmp.hasRuns())
            return decodeRuns(sink, error);
        return !sink || decodeRows(*sink, error);
    }

private:
    size_t countUsedBytes() const { return (size_t(m_bmp.width) * m_bmp.bits + 7) / 8; }

    std::span<const uint8_t> viewRow(unsigned y)
    {
        const unsigned stored = m_bmp.fromTop ? y : m_bmp.height - 1 - y;
        return m_source.view(m_bmp.pixelOffset + stored * m_bmp.countRowBytes(), countUsedBytes());
    }

    bool decodeRuns(ImageSink* sink, std::string& error);
    bool decodeRows(ImageSink& sink, std::string& error);
    bool hasAlpha();
    void convertIndices(const uint8_t* stored, uint8_t* out) const;
    void convertMasked(const uint8_t* stored, uint8_t* out) const;
    void convertRow(const uint8_t* stored, uint8_t* out) const;

    ImageSource& m_source;
    Description m_bmp;
    BmpPalette m_palette{};
};

bool BmpDecoder::decodeRuns(ImageSink* sink, std::string& error)
{
    BmpRuns runs(m_source, m_bmp.pixelOffset, m_bmp.width, m_bmp.height, m_bmp.bits);
    if (!runs.findRows())
        return failAtEnd(m_header, m_source, error);
    std::vector<uint8_t> row(m_bmp.width * rgbaBytes);
    for (unsigned y = 0; sink && y < m_bmp.height; ++y) {
        runs.decodeRow(m_bmp.height - 1 - y, m_palette, row.data());
        if (!sink->putRow(0, 0, y, row.data()))
            return false;
    }
    return true;
}

/// Without masks of its own many programs leave the fourth byte at 0, so a picture that is transparent everywhere is
/// opaque.
bool BmpDecoder::hasAlpha()
{
    if (m_bmp.hasMasks())
        return m_bmp.masks[3] != 0;
    const PixelChannel alpha(m_bmp.masks[3], 0);
    const size_t pixelBytes = m_bmp.bits / 8;
    for (unsigned y = 0; m_bmp.masks[3] && y < m_bmp.height; ++y) {
        const std::span<const uint8_t> stored = viewRow(y);
        for (size_t at = 0; at + pixelBytes <= stored.size(); at += pixelBytes) {
            uint32_t pixel = 0;
            for (size_t byte = 0; byte < pixelBytes; ++byte)
                pixel |= uint32_t(stored[at + byte]) << (8 * byte);
            if (pixel & m_bmp.masks[3])
                return true;
        }
    }
    return false;
}

bool BmpDecoder::decodeRows(ImageSink& sink, std::string& error)
{
    if (!hasAlpha())
        m_bmp.masks[3] = 0;
    std::vector<uint8_t> row(m_bmp.width * rgbaBytes);
    for (unsigned y = 0; y < m_bmp.height; ++y) {
        const std::span<const uint8_t> stored = viewRow(y);
        if (stored.size() < countUsedBytes())
            return failAtEnd(m_header, m_source, error);
        convertRow(stored.data(), row.data());
        if (!sink.putRow(0, 0, y, row.data()))
            return false;
    }
    return true;
}

void BmpDecoder::convertIndices(const uint8_t* stored, uint8_t* out) const
{
    const unsigned inByte = 8 / m_bmp.bits;
    const unsigned mask = (1u << m_bmp.bits) - 1;
    for (unsigned x = 0; x < m_bmp.width; ++x, out += rgbaBytes) {
        const unsigned shift = (inByte - 1 - x % inByte) * m_bmp.bits;
        std::memcpy(out, m_palette[stored[x / inByte] >> shift & mask].data(), rgbaBytes);
    }
}

void BmpDecoder::convertMasked(const uint8_t* stored, uint8_t* out) const
{
    const PixelChannel red(m_bmp.masks[0], 0);
    const PixelChannel green(m_bmp.masks[1], 0);
    const PixelChannel blue(m_bmp.masks[2], 0);
    const PixelChannel alpha(m_bmp.masks[3], 255);
    const bool wide = m_bmp.bits == 32;
    for (unsigned x = 0; x < m_bmp.width; ++x, stored += m_bmp.bits / 8, out += rgbaBytes) {
        const uint32_t high = wide ? uint32_t(stored[2]) << 16 | uint32_t(stored[3]) << 24 : 0;
        const uint32_t pixel = uint32_t(stored[0]) | uint32_t(stored[1]) << 8 | high;
        out[0] = red.extract(pixel);
        out[1] = green.extract(pixel);
        out[2] = blue.extract(pixel);
        out[3] = alpha.extract(pixel);
    }
}

void BmpDecoder::convertRow(const uint8_t* stored, uint8_t* out) const
{
    if (m_bmp.isIndexed())
        return convertIndices(stored, out);
    if (m_bmp.bits != 24)
        return convertMasked(stored, out);
    for (unsigned x = 0; x < m_bmp.width; ++x, stored += 3, out += rgbaBytes) {
        out[0] = stored[2];
        out[1] = stored[1];
        out[2] = stored[0];
        out[3] = 255;
    }
}

} // namespace

std::unique_ptr<ImageDecoder> openBmp(ImageSource& source, std::string& error)
{
    Description bmp;
    if (!readDescription(source, bmp, error))
        return nullptr;
    auto decoder = std::make_unique<BmpDecoder>(source, bmp);
    const bool whole = checkLeastBytes(decoder->getHeader(), source, decoder->countLeastBytes(), error);
    return whole ? std::move(decoder) : nullptr;
}

} // namespace helvantine
