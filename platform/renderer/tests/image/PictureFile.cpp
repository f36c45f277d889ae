// SPDX-License-Identifier: MIT
#include "PictureFile.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

namespace helvantine::test
{

namespace
{

void append(void* context, void* data, int size)
{
    const auto* bytes = static_cast<const uint8_t*>(data);
    static_cast<Bytes*>(context)->insert(static_cast<Bytes*>(context)->end(), bytes, bytes + size);
}

} // namespace

Bytes makePattern(unsigned width, unsigned height)
{
    Bytes pixels(size_t(width) * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i * 37 + i / 256 + 11);
    return pixels;
}

Bytes encodePng(unsigned width, unsigned height, const Bytes& pixels)
{
    Bytes file;
    stbi_write_png_to_func(append, &file, int(width), int(height), 4, pixels.data(), int(width) * 4);
    return file;
}

Bytes encodeBmp(unsigned width, unsigned height, const Bytes& pixels)
{
    Bytes file;
    stbi_write_bmp_to_func(append, &file, int(width), int(height), 4, pixels.data());
    return file;
}

Bytes encodeTga(unsigned width, unsigned height, const Bytes& pixels)
{
    Bytes file;
    stbi_write_tga_to_func(append, &file, int(width), int(height), 4, pixels.data());
    return file;
}

Bytes encodeJpg(unsigned width, unsigned height, const Bytes& pixels)
{
    constexpr int bestQuality = 100;
    Bytes file;
    stbi_write_jpg_to_func(append, &file, int(width), int(height), 4, pixels.data(), bestQuality);
    return file;
}

} // namespace helvantine::test
