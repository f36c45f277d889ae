// SPDX-License-Identifier: MIT
#include "image/ImageDecoder.h"
#include "image/MipRows.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanTexture.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

namespace helvantine
{

namespace
{

/// Four channels of 8 bits: what mips are made of.
bool hasByteChannels(DXGI_FORMAT format)
{
    return format == DXGI_FORMAT_R8G8B8A8_UNORM || format == DXGI_FORMAT_R8G8B8A8_UNORM_SRGB ||
           format == DXGI_FORMAT_B8G8R8A8_UNORM || format == DXGI_FORMAT_B8G8R8A8_UNORM_SRGB;
}

/// False, with the reason in error, where the pixels can't be a texture or aren't all there.
bool checkPixels(const TexturePixels& pixels, size_t rowBytes, size_t rows, size_t pitch, std::string& error)
{
    const bool room = pixels.data && pixels.size >= rowBytes && pitch >= rowBytes &&
                      (pixels.size - rowBytes) / pitch >= rows - 1;
    if (!room)
        error = formatString(
            "%u by %u pixels of format %u are %llu rows of %llu bytes, %llu bytes with %llu from row to "
            "row are given",
            pixels.width, pixels.height, unsigned(pixels.format), static_cast<unsigned long long>(rows),
            static_cast<unsigned long long>(rowBytes),
            static_cast<unsigned long long>(pixels.data ? pixels.size : 0),
            static_cast<unsigned long long>(pitch));
    return room;
}

bool checkShape(const TexturePixels& pixels, std::string& error)
{
    if (getFormatLayout(pixels.format).blockBytes == 0)
        error = formatString("no texture of DXGI format %u", unsigned(pixels.format));
    else if (pixels.width == 0 || pixels.height == 0 || pixels.width > maxImageSide ||
             pixels.height > maxImageSide)
        error = formatString("no texture of %u by %u pixels, sides from 1 to %u are possible", pixels.width,
                             pixels.height, maxImageSide);
    return error.empty();
}

bool putRows(ImageSink& sink, const TexturePixels& pixels, size_t rows, size_t pitch)
{
    const auto* row = static_cast<const uint8_t*>(pixels.data);
    for (unsigned y = 0; y < rows; ++y) {
        if (!sink.putRow(0, 0, y, row + y * pitch))
            return false;
    }
    return true;
}

/// Without an error it is the device that refused, which has said why.
Texture* refuse(const char* name, const std::string& error)
{
    reportProblem("texture",
                  std::string(name) + ": " + (error.empty() ? "the device didn't take it" : error));
    return nullptr;
}

} // namespace

Texture* createTextureFromMemory(const void* bytes, size_t size, const char* name)
{
    if (!VulkanContext::getCurrent())
        return nullptr;
    name = name ? name : "picture in memory";
    std::string error;
    ImageSource source(std::span(static_cast<const uint8_t*>(bytes), bytes ? size : 0));
    const std::unique_ptr<ImageDecoder> decoder = openImage(source, error);
    Texture* texture =
        decoder ? createTextureFromRows(decoder->getHeader(), name,
                                        [&](ImageSink& sink) { return decodeImage(*decoder, &sink, error); })
                : nullptr;
    return texture ? texture : refuse(name, error);
}

Texture* createTextureFromPixels(const TexturePixels& pixels, const char* name)
{
    if (!VulkanContext::getCurrent())
        return nullptr;
    name = name ? name : "pixels in memory";
    std::string error;
    if (!checkShape(pixels, error))
        return refuse(name, error);
    const bool mips = hasByteChannels(pixels.format);
    ImageData layout;
    layout.layOut(pixels.format, pixels.width, pixels.height, 1, 1);
    const ImageData::Level& level = layout.getLevel(0, 0);
    const size_t rows = level.size / level.rowBytes;
    const size_t pitch = pixels.rowPitch ? pixels.rowPitch : level.rowBytes;
    if (!checkPixels(pixels, level.rowBytes, rows, pitch, error))
        return refuse(name, error);
    const ImageHeader header{.format = pixels.format,
                             .width = pixels.width,
                             .height = pixels.height,
                             .mipCount = mips ? countMips(pixels.width, pixels.height) : 1};
    Texture* texture = createTextureFromRows(header, name, [&](ImageSink& sink) {
        if (!mips)
            return putRows(sink, pixels, rows, pitch);
        MipRows mipRows(sink, pixels.width, pixels.height);
        return putRows(mipRows, pixels, rows, pitch);
    });
    return texture ? texture : refuse(name, error);
}

} // namespace helvantine
