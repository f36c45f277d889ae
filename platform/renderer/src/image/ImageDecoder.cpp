// SPDX-License-Identifier: MIT
#include "image/ImageDecoder.h"

#include "image/MipRows.h"
#include "image/PictureDecoders.h"

#include <helvantine/core/Text.h>

#include <cstring>

namespace helvantine
{

namespace
{

struct Signature
{
    std::span<const uint8_t> magic;
    std::unique_ptr<ImageDecoder> (*open)(ImageSource& source, std::string& error);
};

constexpr uint8_t ddsMagic[] = {'D', 'D', 'S', ' '};
constexpr uint8_t pngMagic[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr uint8_t bmpMagic[] = {'B', 'M'};
constexpr uint8_t jpegMagic[] = {0xff, 0xd8};

constexpr Signature signatures[] = {
    {ddsMagic, openDds}, {pngMagic, openPng}, {bmpMagic, openBmp}, {jpegMagic, openJpeg}, {{}, openTga},
};

/// Keeps the rows where an image has them.
class MemorySink final : public ImageSink
{
public:
    explicit MemorySink(const ImageHeader& header)
    {
        m_image.bytes.resize(
            m_image.layOut(header.format, header.width, header.height, header.mipCount, header.faceCount));
    }

    bool putRow(unsigned face, unsigned mip, unsigned y, const uint8_t* row) override
    {
        const size_t rowBytes = m_image.getLevel(face, mip).rowBytes;
        std::memcpy(m_image.getPixels(face, mip) + y * rowBytes, row, rowBytes);
        return true;
    }

    ImageData takeImage() { return std::move(m_image); }

private:
    ImageData m_image;
};

} // namespace

std::unique_ptr<ImageDecoder> openImage(ImageSource& source, std::string& error)
{
    for (const Signature& signature : signatures) {
        if (source.startsWith(signature.magic))
            return signature.open(source, error);
    }
    return nullptr; // never comes here: the last one fits every file
}

bool decodeImage(ImageDecoder& decoder, ImageSink* sink, std::string& error)
{
    const ImageHeader& header = decoder.getHeader();
    if (!sink || header.storesMips)
        return decoder.decode(sink, error);
    MipRows mips(*sink, header.width, header.height);
    return decoder.decode(&mips, error);
}

std::optional<ImageData> decodeImage(ImageDecoder& decoder, std::string& error)
{
    MemorySink sink(decoder.getHeader());
    if (!decodeImage(decoder, &sink, error))
        return std::nullopt;
    return sink.takeImage();
}

std::optional<ImageData> decodeImage(std::span<const uint8_t> file, std::string& error)
{
    ImageSource source(file);
    const std::unique_ptr<ImageDecoder> decoder = openImage(source, error);
    return decoder ? decodeImage(*decoder, error) : std::nullopt;
}

bool checkSides(const char* kind, unsigned width, unsigned height, std::string& error)
{
    if (width > 0 && height > 0 && width <= maxImageSide && height <= maxImageSide)
        return true;
    error = formatString("%s of %u by %u pixels, sides from 1 to %u can be read", kind, width, height,
                         maxImageSide);
    return false;
}

bool checkLeastBytes(const ImageHeader& header, ImageSource& source, uint64_t least, std::string& error)
{
    if (source.getSize() >= least)
        return true;
    error = formatString("%s of %u by %u pixels in %llu bytes, at least %llu are needed", header.kind,
                         header.width, header.height, static_cast<unsigned long long>(source.getSize()),
                         static_cast<unsigned long long>(least));
    return false;
}

bool failAtEnd(const ImageHeader& header, const ImageSource& source, std::string& error)
{
    error = formatString("%s ends early, at byte %llu", header.kind,
                         static_cast<unsigned long long>(source.getSize()));
    return false;
}

void describePicture(ImageHeader& header, const char* kind, unsigned width, unsigned height)
{
    header.kind = kind;
    header.width = width;
    header.height = height;
    header.mipCount = countMips(width, height);
}

} // namespace helvantine
