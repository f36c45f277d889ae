// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec4.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace helvantine::test
{

/// A picture in memory: red, green, blue, alpha as floats, rows from the top. 8-bit pictures hold n / 255,
/// which comes back as n exactly.
class Image
{
public:
    using Pixel8 = std::array<uint8_t, 4>; ///< red, green, blue, alpha

    Image() = default;
    Image(unsigned width, unsigned height, const Vec4& color = Vec4(0, 0, 0, 0));

    /// From what Renderer::readBack yields. format: a DXGI_FORMAT of a colour target; any other one gives an
    /// empty image, as do bytes that are too few.
    static Image fromBytes(unsigned width, unsigned height, unsigned format,
                           const std::vector<uint8_t>& bytes);

    unsigned getWidth() const { return m_width; }
    unsigned getHeight() const { return m_height; }
    bool isEmpty() const { return m_pixels.empty(); }

    Vec4& at(unsigned x, unsigned y) { return m_pixels[static_cast<size_t>(y) * m_width + x]; }
    const Vec4& at(unsigned x, unsigned y) const { return m_pixels[static_cast<size_t>(y) * m_width + x]; }
    Pixel8 at8(unsigned x, unsigned y) const; ///< rounded and clamped

private:
    unsigned m_width = 0;
    unsigned m_height = 0;
    std::vector<Vec4> m_pixels;
};

/// Empty if the file is no PNG.
Image readPng(const std::string& path);
/// 8 bits a channel, values clamped. Makes missing folders; false if the file can't be written.
bool writePng(const std::string& path, const Image& image);

} // namespace helvantine::test
