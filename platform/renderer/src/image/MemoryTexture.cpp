// SPDX-License-Identifier: MIT
#include "image/ImageDecoder.h"
#include "image/MipChain.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanTexture.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <cstring>

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

/// Lays the image out for the pixels. False, with the reason in error, where they don't add up.
bool layOutPixels(const TexturePixels& pixels, ImageData& image, size_t& bytes, std::string& error)
{
    if (getFormatLayout(pixels.format).blockBytes == 0) {
        error = formatString("no texture of DXGI format %u", unsigned(pixels.format));
        return false;
    }
    if (pixels.width == 0 || pixels.height == 0 || pixels.width > maxImageSide ||
        pixels.height > maxImageSide) {
        error = formatString("no texture of %u by %u pixels, sides from 1 to %u are possible", pixels.width,
                             pixels.height, maxImageSide);
        return false;
    }
    const unsigned mips = hasByteChannels(pixels.format) ? countMips(pixels.width, pixels.height) : 1;
    bytes = image.layOut(pixels.format, pixels.width, pixels.height, mips, 1);
    return true;
}

bool copyPixels(const TexturePixels& pixels, ImageData& image, size_t bytes, std::string& error)
{
    const ImageData::Level& level = image.getLevel(0, 0);
    const size_t pitch = pixels.rowPitch ? pixels.rowPitch : level.rowBytes;
    const size_t rows = level.size / level.rowBytes;
    const bool room = pixels.data && pixels.size >= level.rowBytes && pitch >= level.rowBytes &&
                      (pixels.size - level.rowBytes) / pitch >= rows - 1;
    if (!room) {
        error = formatString(
            "%u by %u pixels of format %u are %llu rows of %llu bytes, %llu bytes with %llu from row to "
            "row are given",
            pixels.width, pixels.height, unsigned(pixels.format), static_cast<unsigned long long>(rows),
            static_cast<unsigned long long>(level.rowBytes),
            static_cast<unsigned long long>(pixels.data ? pixels.size : 0),
            static_cast<unsigned long long>(pitch));
        return false;
    }
    image.bytes.resize(bytes);
    const auto* source = static_cast<const uint8_t*>(pixels.data);
    for (size_t row = 0; row < rows; ++row)
        std::memcpy(image.getPixels(0, 0) + row * level.rowBytes, source + row * pitch, level.rowBytes);
    return true;
}

Texture* refuse(const char* name, const std::string& error)
{
    reportProblem("texture", std::string(name) + ": " + error);
    return nullptr;
}

} // namespace

Texture* createTextureFromMemory(const void* bytes, size_t size, const char* name)
{
    if (!VulkanContext::getCurrent())
        return nullptr;
    name = name ? name : "picture in memory";
    std::string error;
    const std::optional<ImageData> image =
        decodeImage({static_cast<const uint8_t*>(bytes), bytes ? size : 0}, error);
    return image ? createTextureFromImage(*image, name) : refuse(name, error);
}

Texture* createTextureFromPixels(const TexturePixels& pixels, const char* name)
{
    if (!VulkanContext::getCurrent())
        return nullptr;
    name = name ? name : "pixels in memory";
    ImageData image;
    std::string error;
    size_t bytes = 0;
    if (!layOutPixels(pixels, image, bytes, error) || !copyPixels(pixels, image, bytes, error))
        return refuse(name, error);
    if (hasByteChannels(image.format))
        generateMips(image);
    return createTextureFromImage(image, name);
}

} // namespace helvantine
