// SPDX-License-Identifier: MIT
#include <helvantine/testsupport/Image.h>

#include <helvantine/renderer/D3D11Types.h>

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>

namespace helvantine::test
{

namespace
{

float halfToFloat(uint16_t bits)
{
    const int exponent = (bits >> 10) & 31;
    const float mantissa = static_cast<float>(bits & 1023);
    const float sign = bits & 0x8000 ? -1.0f : 1.0f;
    if (exponent == 31)
        return mantissa == 0 ? sign * INFINITY : NAN;
    return sign * (exponent == 0 ? std::ldexp(mantissa, -24) : std::ldexp(mantissa + 1024.0f, exponent - 25));
}

Vec4 decodeBytes(const uint8_t* p, bool blueFirst)
{
    const float red = static_cast<float>(p[blueFirst ? 2 : 0]) / 255.0f;
    const float green = static_cast<float>(p[1]) / 255.0f;
    const float blue = static_cast<float>(p[blueFirst ? 0 : 2]) / 255.0f;
    return Vec4(red, green, blue, static_cast<float>(p[3]) / 255.0f);
}

Vec4 decodePixel(const uint8_t* p, unsigned format)
{
    float values[4] = {0, 0, 0, 1};
    uint16_t halves[4] = {};
    switch (format) {
    case DXGI_FORMAT_R8G8B8A8_UNORM:
        return decodeBytes(p, false);
    case DXGI_FORMAT_B8G8R8A8_UNORM:
        return decodeBytes(p, true);
    case DXGI_FORMAT_R32G32B32A32_FLOAT:
        std::memcpy(values, p, 16);
        break;
    case DXGI_FORMAT_R32_FLOAT:
        std::memcpy(values, p, 4);
        break;
    case DXGI_FORMAT_R16G16B16A16_FLOAT:
        std::memcpy(halves, p, 8);
        std::transform(halves, halves + 4, values, halfToFloat);
        break;
    default: // R16_FLOAT
        std::memcpy(halves, p, 2);
        values[0] = halfToFloat(halves[0]);
        break;
    }
    return Vec4(values[0], values[1], values[2], values[3]);
}

size_t getPixelSize(unsigned format)
{
    switch (format) {
    case DXGI_FORMAT_R16_FLOAT:
        return 2;
    case DXGI_FORMAT_R8G8B8A8_UNORM:
    case DXGI_FORMAT_B8G8R8A8_UNORM:
    case DXGI_FORMAT_R32_FLOAT:
        return 4;
    case DXGI_FORMAT_R16G16B16A16_FLOAT:
        return 8;
    case DXGI_FORMAT_R32G32B32A32_FLOAT:
        return 16;
    default:
        return 0;
    }
}

uint8_t toByte(float value)
{
    // Written so that NaN gives 0.
    return value > 0.0f ? static_cast<uint8_t>(std::lround(std::min(value, 1.0f) * 255.0f)) : 0;
}

} // namespace

Image::Image(unsigned width, unsigned height, const Vec4& color)
    : m_width(width), m_height(height), m_pixels(static_cast<size_t>(width) * height, color)
{
}

Image Image::fromBytes(unsigned width, unsigned height, unsigned format, const std::vector<uint8_t>& bytes)
{
    const size_t pixelSize = getPixelSize(format);
    const size_t count = static_cast<size_t>(width) * height;
    if (pixelSize == 0 || bytes.size() < count * pixelSize)
        return {};
    Image image(width, height);
    for (size_t i = 0; i < count; ++i)
        image.m_pixels[i] = decodePixel(bytes.data() + i * pixelSize, format);
    return image;
}

Image::Pixel8 Image::at8(unsigned x, unsigned y) const
{
    const Vec4& pixel = at(x, y);
    return {toByte(pixel.x), toByte(pixel.y), toByte(pixel.z), toByte(pixel.w)};
}

Image readPng(const std::string& path)
{
    int width = 0;
    int height = 0;
    int channels = 0;
    stbi_uc* pixels = stbi_load(path.c_str(), &width, &height, &channels, 4);
    if (!pixels)
        return {};
    const std::vector<uint8_t> bytes(pixels, pixels + static_cast<size_t>(width) * height * 4);
    stbi_image_free(pixels);
    return Image::fromBytes(static_cast<unsigned>(width), static_cast<unsigned>(height),
                            DXGI_FORMAT_R8G8B8A8_UNORM, bytes);
}

bool writePng(const std::string& path, const Image& image)
{
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    std::vector<Image::Pixel8> pixels;
    pixels.reserve(static_cast<size_t>(image.getWidth()) * image.getHeight());
    for (unsigned y = 0; y < image.getHeight(); ++y) {
        for (unsigned x = 0; x < image.getWidth(); ++x)
            pixels.push_back(image.at8(x, y));
    }
    const int width = static_cast<int>(image.getWidth());
    return stbi_write_png(path.c_str(), width, static_cast<int>(image.getHeight()), 4, pixels.data(),
                          width * 4) != 0;
}

} // namespace helvantine::test
