// SPDX-License-Identifier: MIT
#include "image/PictureDecoders.h"

#include "image/PixelChannel.h"

#include <helvantine/core/Text.h>

#include <algorithm>
#include <cstring>

namespace helvantine
{

namespace
{

constexpr uint32_t fourCC(const char (&text)[5])
{
    return uint32_t(uint8_t(text[0])) | uint32_t(uint8_t(text[1])) << 8 | uint32_t(uint8_t(text[2])) << 16 |
           uint32_t(uint8_t(text[3])) << 24;
}

/// The fields of a dds file as they lie behind its four-byte magic.
struct PixelFormat
{
    uint32_t size;
    uint32_t flags;
    uint32_t code;
    uint32_t bitCount;
    uint32_t masks[4]; ///< red, green, blue, alpha
};

struct Header
{
    uint32_t size;
    uint32_t flags;
    uint32_t height;
    uint32_t width;
    uint32_t pitch;
    uint32_t depth;
    uint32_t mipCount;
    uint32_t reserved1[11];
    PixelFormat pixelFormat;
    uint32_t caps;
    uint32_t caps2;
    uint32_t caps3;
    uint32_t caps4;
    uint32_t reserved2;
};

struct ExtendedHeader
{
    uint32_t format;
    uint32_t dimension;
    uint32_t miscFlags;
    uint32_t arraySize;
    uint32_t miscFlags2;
};

static_assert(sizeof(Header) == 124 && sizeof(ExtendedHeader) == 20);

constexpr size_t magicBytes = 4;
constexpr uint32_t alphaPixels = 0x1;
constexpr uint32_t alphaOnly = 0x2;
constexpr uint32_t hasCode = 0x4;
constexpr uint32_t rgbPixels = 0x40;
constexpr uint32_t luminancePixels = 0x20000;
constexpr uint32_t cubeFlag = 0x200;
constexpr uint32_t cubeFaces = 0xfc00;
constexpr uint32_t volumeFlag = 0x200000;
constexpr uint32_t dimension2D = 3;
constexpr uint32_t extendedCube = 4;

/// What the headers say, checked.
struct Description
{
    DXGI_FORMAT format = DXGI_FORMAT_UNKNOWN; ///< of the image
    unsigned width = 0;
    unsigned height = 0;
    unsigned mipCount = 1;
    unsigned faceCount = 1;
    unsigned storedBytes = 0; ///< of a stored pixel that has to be converted; 0: stored in the image's format
    PixelFormat packed{};     ///< of a converted pixel, unless it is three floats
    size_t dataOffset = 0;
};

struct CodedFormat
{
    uint32_t code;
    DXGI_FORMAT format;
};

/// Names of formats from before the extended header; the small numbers are Direct3D 9's.
constexpr CodedFormat codedFormats[] = {
    {fourCC("DXT1"), DXGI_FORMAT_BC1_UNORM},
    {fourCC("DXT2"), DXGI_FORMAT_BC2_UNORM},
    {fourCC("DXT3"), DXGI_FORMAT_BC2_UNORM},
    {fourCC("DXT4"), DXGI_FORMAT_BC3_UNORM},
    {fourCC("DXT5"), DXGI_FORMAT_BC3_UNORM},
    {fourCC("ATI1"), DXGI_FORMAT_BC4_UNORM},
    {fourCC("BC4U"), DXGI_FORMAT_BC4_UNORM},
    {fourCC("BC4S"), DXGI_FORMAT_BC4_SNORM},
    {fourCC("ATI2"), DXGI_FORMAT_BC5_UNORM},
    {fourCC("BC5U"), DXGI_FORMAT_BC5_UNORM},
    {fourCC("BC5S"), DXGI_FORMAT_BC5_SNORM},
    {111, DXGI_FORMAT_R16_FLOAT},
    {112, DXGI_FORMAT_R16G16_FLOAT},
    {113, DXGI_FORMAT_R16G16B16A16_FLOAT},
    {114, DXGI_FORMAT_R32_FLOAT},
    {115, DXGI_FORMAT_R32G32_FLOAT},
    {116, DXGI_FORMAT_R32G32B32A32_FLOAT},
};

bool readCodedFormat(uint32_t code, Description& out, std::string& error)
{
    const auto* found = std::find_if(std::begin(codedFormats), std::end(codedFormats),
                                     [code](const CodedFormat& entry) { return entry.code == code; });
    if (found == std::end(codedFormats)) {
        error = formatString("dds format with code 0x%08X is not supported", static_cast<unsigned>(code));
        return false;
    }
    out.format = found->format;
    return true;
}

bool haveMasks(const PixelFormat& format, uint32_t red, uint32_t green, uint32_t blue, uint32_t alpha)
{
    return format.bitCount == 32 && format.masks[0] == red && format.masks[1] == green &&
           format.masks[2] == blue && format.masks[3] == alpha;
}

/// Two layouts are formats of their own; all others are unpacked to 8-bit RGBA.
bool readMaskedFormat(PixelFormat format, Description& out, std::string& error)
{
    if (!(format.flags & (alphaPixels | alphaOnly)))
        format.masks[3] = 0;
    if (format.flags & alphaOnly)
        format.masks[0] = format.masks[1] = format.masks[2] = 0;
    if (haveMasks(format, 0xff, 0xff00, 0xff0000, 0xff000000)) {
        out.format = DXGI_FORMAT_R8G8B8A8_UNORM;
        return true;
    }
    if (haveMasks(format, 0xff0000, 0xff00, 0xff, 0xff000000)) {
        out.format = DXGI_FORMAT_B8G8R8A8_UNORM;
        return true;
    }
    if (format.bitCount == 0 || format.bitCount > 32 || format.bitCount % 8 != 0) {
        error =
            formatString("dds with %u bits a pixel is not supported", static_cast<unsigned>(format.bitCount));
        return false;
    }
    out.format = DXGI_FORMAT_R8G8B8A8_UNORM;
    out.storedBytes = format.bitCount / 8;
    out.packed = format;
    return true;
}

/// Reads the record at the offset and goes behind it.
template <typename Record>
bool readRecord(ImageSource& source, size_t& offset, Record& record, std::string& error)
{
    const std::span<const uint8_t> bytes = source.view(offset, sizeof record);
    if (bytes.size() < sizeof record) {
        error = formatString("dds ends inside its headers, at byte %llu",
                             static_cast<unsigned long long>(source.getSize()));
        return false;
    }
    std::memcpy(&record, bytes.data(), sizeof record);
    offset += sizeof record;
    return true;
}

bool readExtendedHeader(ImageSource& source, Description& out, std::string& error)
{
    ExtendedHeader extended;
    if (!readRecord(source, out.dataOffset, extended, error))
        return false;

    if (extended.dimension != dimension2D || extended.arraySize != 1) {
        error = formatString(
            "dds of dimension %u with %u array slices, only single 2D images and cubes are read",
            static_cast<unsigned>(extended.dimension), static_cast<unsigned>(extended.arraySize));
        return false;
    }
    if (extended.miscFlags & extendedCube)
        out.faceCount = 6;
    out.format = static_cast<DXGI_FORMAT>(extended.format);
    if (getFormatLayout(out.format).blockBytes == 0 || isIntegerFormat(out.format)) {
        error =
            formatString("dds of DXGI format %u is not supported", static_cast<unsigned>(extended.format));
        return false;
    }
    if (out.format == DXGI_FORMAT_R32G32B32_FLOAT) { // GPUs don't sample it
        out.format = DXGI_FORMAT_R32G32B32A32_FLOAT;
        out.storedBytes = 12;
    }
    return true;
}

bool readFormat(ImageSource& source, const PixelFormat& format, Description& out, std::string& error)
{
    if (format.flags & hasCode)
        return format.code == fourCC("DX10") ? readExtendedHeader(source, out, error)
                                             : readCodedFormat(format.code, out, error);
    if (format.flags & (rgbPixels | luminancePixels | alphaOnly))
        return readMaskedFormat(format, out, error);
    error = formatString("dds with pixel format flags 0x%X is not supported",
                         static_cast<unsigned>(format.flags));
    return false;
}

bool checkSizes(const Description& dds, std::string& error)
{
    if (!checkSides("dds", dds.width, dds.height, error))
        return false;
    if (dds.faceCount == 6 && dds.width != dds.height) {
        error = formatString("dds cube of %u by %u pixels, its faces must be square", dds.width, dds.height);
        return false;
    }
    if (dds.mipCount > countMips(dds.width, dds.height)) {
        error = formatString("dds of %u by %u pixels with %u mips, at most %u fit", dds.width, dds.height,
                             dds.mipCount, countMips(dds.width, dds.height));
        return false;
    }
    return true;
}

bool readDescription(ImageSource& source, Description& out, std::string& error)
{
    Header header;
    out.dataOffset = magicBytes;
    if (!readRecord(source, out.dataOffset, header, error))
        return false;
    if (header.size != sizeof header || header.pixelFormat.size != sizeof(PixelFormat)) {
        error =
            formatString("dds headers of %u and %u bytes, %u and %u are expected",
                         static_cast<unsigned>(header.size), static_cast<unsigned>(header.pixelFormat.size),
                         static_cast<unsigned>(sizeof header), static_cast<unsigned>(sizeof(PixelFormat)));
        return false;
    }
    if (header.caps2 & volumeFlag) {
        error = "dds holds a volume, only 2D images and cubes are read";
        return false;
    }
    if (header.caps2 & cubeFlag) {
        if ((header.caps2 & cubeFaces) != cubeFaces) {
            error = "dds cube without all six faces";
            return false;
        }
        out.faceCount = 6;
    }
    out.width = header.width;
    out.height = header.height;
    out.mipCount = std::max<uint32_t>(1, header.mipCount);
    return readFormat(source, header.pixelFormat, out, error) && checkSizes(out, error);
}

void unpackPixels(const uint8_t* source, size_t count, const PixelFormat& format, uint8_t* out)
{
    const bool grey = (format.flags & luminancePixels) != 0;
    const PixelChannel red(format.masks[0], 0);
    const PixelChannel green(grey ? format.masks[0] : format.masks[1], 0);
    const PixelChannel blue(grey ? format.masks[0] : format.masks[2], 0);
    const PixelChannel alpha(format.masks[3], 255);
    const unsigned pixelBytes = format.bitCount / 8;
    for (size_t i = 0; i < count; ++i, source += pixelBytes, out += 4) {
        uint32_t pixel = 0;
        for (unsigned byte = 0; byte < pixelBytes; ++byte)
            pixel |= uint32_t(source[byte]) << (8 * byte);
        out[0] = red.extract(pixel);
        out[1] = green.extract(pixel);
        out[2] = blue.extract(pixel);
        out[3] = alpha.extract(pixel);
    }
}

void widenFloats(const uint8_t* source, size_t count, uint8_t* out)
{
    constexpr float one = 1.0f;
    for (size_t i = 0; i < count; ++i, source += 12, out += 16) {
        std::memcpy(out, source, 12);
        std::memcpy(out + 12, &one, sizeof one);
    }
}

void convertPixels(const Description& dds, const uint8_t* stored, size_t count, uint8_t* out)
{
    if (dds.format == DXGI_FORMAT_R32G32B32A32_FLOAT)
        widenFloats(stored, count, out);
    else
        unpackPixels(stored, count, dds.packed, out);
}

class DdsDecoder final : public ImageDecoder
{
public:
    DdsDecoder(ImageSource& source, const Description& dds) : m_source(source), m_dds(dds)
    {
        m_header = {"dds", dds.format, dds.width, dds.height, dds.faceCount, dds.mipCount, true};
        m_layout.layOut(dds.format, dds.width, dds.height, dds.mipCount, dds.faceCount);
    }

    bool decode(ImageSink* sink, std::string& error) override;
    bool checkSize(std::string& error) const;

private:
    /// Bytes that a row of the level takes in the file.
    size_t countStoredBytes(const ImageData::Level& level) const
    {
        return m_dds.storedBytes ? size_t(level.width) * m_dds.storedBytes : level.rowBytes;
    }

    ImageSource& m_source;
    Description m_dds;
    ImageData m_layout; ///< without bytes
};

bool DdsDecoder::checkSize(std::string& error) const
{
    uint64_t needed = 0;
    for (const ImageData::Level& level : m_layout.levels)
        needed += uint64_t(countStoredBytes(level)) * (level.size / level.rowBytes);
    const uint64_t there = m_source.getSize() - m_dds.dataOffset;
    if (there < needed)
        error = formatString("dds needs %llu bytes of pixels, %llu are there",
                             static_cast<unsigned long long>(needed), static_cast<unsigned long long>(there));
    return there >= needed;
}

bool DdsDecoder::decode(ImageSink* sink, std::string& error)
{
    uint64_t offset = m_dds.dataOffset;
    std::vector<uint8_t> converted(m_dds.storedBytes ? m_layout.levels[0].rowBytes : 0);
    for (size_t index = 0; sink && index < m_layout.levels.size(); ++index) {
        const ImageData::Level& level = m_layout.levels[index];
        const size_t storedBytes = countStoredBytes(level);
        for (unsigned y = 0; y < level.size / level.rowBytes; ++y, offset += storedBytes) {
            const std::span<const uint8_t> stored = m_source.view(offset, storedBytes);
            if (stored.size() < storedBytes)
                return failAtEnd(m_header, m_source, error);
            if (m_dds.storedBytes)
                convertPixels(m_dds, stored.data(), level.width, converted.data());
            if (!sink->putRow(static_cast<unsigned>(index) / m_dds.mipCount,
                              static_cast<unsigned>(index) % m_dds.mipCount, y,
                              m_dds.storedBytes ? converted.data() : stored.data()))
                return false;
        }
    }
    return true;
}

} // namespace

std::unique_ptr<ImageDecoder> openDds(ImageSource& source, std::string& error)
{
    Description dds;
    if (!readDescription(source, dds, error))
        return nullptr;
    auto decoder = std::make_unique<DdsDecoder>(source, dds);
    return decoder->checkSize(error) ? std::move(decoder) : nullptr;
}

} // namespace helvantine
