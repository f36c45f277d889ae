// SPDX-License-Identifier: MIT
#include "FrameWriter.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>

#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

#include <cerrno>
#include <cstring>

namespace helvantine::tool
{

namespace
{

class PngWriter : public FrameWriter
{
public:
    PngWriter(const FramePattern& pattern, FrameSize size) : m_pattern(pattern), m_size(size)
    {
        // Half the time of the default for a few percent of size.
        stbi_write_png_compression_level = 5;
    }

    std::string write(int frame, const std::vector<uint8_t>& pixels) override
    {
        // What a screen would show: blended alpha is no part of it.
        m_rgb.resize(pixels.size() / 4 * 3);
        for (size_t from = 0, to = 0; from < pixels.size(); from += 4, to += 3) {
            m_rgb[to] = pixels[from + 2];
            m_rgb[to + 1] = pixels[from + 1];
            m_rgb[to + 2] = pixels[from];
        }
        const std::string path = m_pattern.getPath(frame);
        makeFolders(getPath(path.c_str()).c_str());
        errno = 0;
        const int width = static_cast<int>(m_size.width);
        if (stbi_write_png(path.c_str(), width, static_cast<int>(m_size.height), 3, m_rgb.data(), width * 3))
            return {};
        return path + ": can't be written" + (errno ? std::string(": ") + std::strerror(errno) : "");
    }

private:
    FramePattern m_pattern;
    FrameSize m_size;
    std::vector<uint8_t> m_rgb;
};

} // namespace

std::unique_ptr<FrameWriter> createPngWriter(const FramePattern& pattern, FrameSize size)
{
    return std::make_unique<PngWriter>(pattern, size);
}

} // namespace helvantine::tool
