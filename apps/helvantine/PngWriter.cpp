// SPDX-License-Identifier: MIT
#include "FrameWriter.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace helvantine::tool
{

namespace
{

/// False, with the reason in errno and nothing left behind, unless every byte has arrived.
bool writeFile(const std::string& path, const void* bytes, size_t size)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool written = std::fwrite(bytes, 1, size, file) == size && std::fflush(file) == 0;
    const int reason = errno;
    std::fclose(file);
    if (!written)
        deleteFile(path.c_str());
    errno = reason;
    return written;
}

class PngWriter : public FrameWriter
{
public:
    PngWriter(const FramePattern& pattern, FrameSize size) : m_pattern(pattern), m_size(size) {}

    std::string write(int frame, const std::vector<uint8_t>& pixels) override
    {
        return writePng(m_pattern.getPath(frame), m_size, pixels);
    }

private:
    FramePattern m_pattern;
    FrameSize m_size;
};

} // namespace

std::string writePng(const std::string& path, FrameSize size, const std::vector<uint8_t>& pixels)
{
    const int width = static_cast<int>(size.width);
    const int height = static_cast<int>(size.height);
    const int rowSize = width * 3;
    if (rowSize <= 0 || height <= 0)
        return path + ": can't be written: the picture has no pixels";

    // Half the time of the default for a few percent of size.
    stbi_write_png_compression_level = 5;
    // What a screen would show: blended alpha is no part of it.
    std::vector<uint8_t> rgb(pixels.size() / 4 * 3);
    for (size_t from = 0, to = 0; to < rgb.size(); from += 4, to += 3) {
        rgb[to] = pixels[from + 2];
        rgb[to + 1] = pixels[from + 1];
        rgb[to + 2] = pixels[from];
    }
    makeFolders(getPath(path.c_str()).c_str());
    int length = 0;
    const std::unique_ptr<unsigned char, decltype(&std::free)> png(
        stbi_write_png_to_mem(rgb.data(), rowSize, width, height, 3, &length), &std::free);
    if (png && writeFile(path, png.get(), static_cast<size_t>(length)))
        return {};
    return path + ": can't be written: " + std::strerror(errno);
}

std::unique_ptr<FrameWriter> createPngWriter(const FramePattern& pattern, FrameSize size)
{
    return std::make_unique<PngWriter>(pattern, size);
}

} // namespace helvantine::tool
