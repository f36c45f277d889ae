// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageData.h"
#include "image/ImageSource.h"

#include <memory>
#include <optional>
#include <string>

/// Decoding of image files.
///
/// The content tells the format, not a name. png, bmp, tga and jpg become 8-bit RGBA without colour conversion, with a
/// full mip chain; dds stays as it is stored. The bytes may be hostile: every size is held against what is there before
/// memory is asked for. A file that ends before its picture does is refused; what a whole one leaves out (palette
/// entries, runs that skip pixels) is transparent black.
///
/// Rows go out as they are decoded, so that beside the sink's own memory a decoder takes some hundred KiB, and a
/// picture that comes in passes (interlaced png, jpg of several scans) up to 8 bytes a pixel.
namespace helvantine
{

/// What the headers of an image file say, checked against the limits.
struct ImageHeader
{
    const char* kind = ""; ///< "png", "bmp", "tga", "jpg" or "dds"
    DXGI_FORMAT format = DXGI_FORMAT_R8G8B8A8_UNORM;
    unsigned width = 0;
    unsigned height = 0;
    unsigned faceCount = 1;  ///< 6 for a cube
    unsigned mipCount = 1;   ///< of the image that is made
    bool storesMips = false; ///< else all but the first are made of it
};

/// Takes the rows of an image: faces outermost, each row of a level after the one above it. A level may begin before
/// the larger one has ended.
class ImageSink
{
public:
    virtual ~ImageSink() = default;

    /// row: of blocks, as many bytes as the level's rows have. False ends the decoding.
    virtual bool putRow(unsigned face, unsigned mip, unsigned y, const uint8_t* row) = 0;
};

class ImageDecoder
{
public:
    virtual ~ImageDecoder() = default;

    const ImageHeader& getHeader() const { return m_header; }

    /// Puts every stored row into the sink; null only looks whether that could be done. False with the reason in
    /// error, which stays empty where the sink said no. Once.
    virtual bool decode(ImageSink* sink, std::string& error) = 0;

protected:
    ImageHeader m_header;
};

/// Reads the headers. Null, with the reason in error, for what is no image that can be read. The source is borrowed.
std::unique_ptr<ImageDecoder> openImage(ImageSource& source, std::string& error);

/// Decodes and makes the mips that the file doesn't store. As ImageDecoder::decode otherwise.
bool decodeImage(ImageDecoder& decoder, ImageSink* sink, std::string& error);

/// The whole image in memory. Nothing on failure, with the reason in error.
std::optional<ImageData> decodeImage(ImageDecoder& decoder, std::string& error);
std::optional<ImageData> decodeImage(std::span<const uint8_t> file, std::string& error);

} // namespace helvantine
