// SPDX-License-Identifier: MIT
#include "PngEncoder.h"

#include "FrameWriter.h"

#include <helvantine/testsupport/Image.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <random>

namespace helvantine::test
{

namespace
{

std::mt19937 g_random(1);

using Paint = std::function<Vec4(unsigned x, unsigned y)>;

Image paint(tool::FrameSize size, const Paint& color)
{
    Image image(size.width, size.height);
    for (unsigned y = 0; y < size.height; ++y) {
        for (unsigned x = 0; x < size.width; ++x)
            image.at(x, y) = color(x, y);
    }
    return image;
}

/// As a device hands them over, with any alpha.
std::vector<uint8_t> toPixels(const Image& image)
{
    std::vector<uint8_t> pixels;
    for (unsigned y = 0; y < image.getHeight(); ++y) {
        for (unsigned x = 0; x < image.getWidth(); ++x) {
            const Image::Pixel8 pixel = image.at8(x, y);
            pixels.insert(pixels.end(), {pixel[2], pixel[1], pixel[0], static_cast<uint8_t>(g_random())});
        }
    }
    return pixels;
}

const struct
{
    const char* name;
    Paint color;
} g_paints[] = {
    {"flat", [](unsigned, unsigned) { return Vec4(0.2f, 1, 0, 1); }},
    {"noise",
     [](unsigned, unsigned) {
         const auto next = [] { return static_cast<float>(g_random() % 256) / 255; };
         return Vec4(next(), next(), next(), 1);
     }},
    {"waves",
     [](unsigned x, unsigned y) {
         const float a = static_cast<float>(x) / 40, b = static_cast<float>(y) / 30;
         return Vec4(0.5f + 0.5f * std::sin(a + b), 0.5f + 0.4f * std::sin(a * b), 0.3f + 0.3f * std::cos(b),
                     1);
     }},
    {"checks", [](unsigned x,
                  unsigned y) { return (x / 16 + y / 16) % 2 ? Vec4(1, 1, 1, 1) : Vec4(0.1f, 0, 0.4f, 1); }},
};

} // namespace

TEST(PngEncoder, WritesWhatReadersRead)
{
    const TemporaryFolder folder;
    for (const auto& [name, color] : g_paints) {
        tool::PngEncoder encoder;
        // One encoder makes files of any sizes in turn.
        for (const tool::FrameSize size :
             {tool::FrameSize{1, 1}, {37, 23}, {256, 3}, {1, 200}, {320, 180}, {2, 2}}) {
            const Image image = paint(size, color);
            std::vector<uint8_t> pixels = toPixels(image);
            const auto file = encoder.encode(pixels, size);
            ASSERT_TRUE(writeFile(folder.file("a.png"), std::string(file.begin(), file.end())));
            const Image read = readPng(folder.file("a.png"));
            ASSERT_EQ(read.getWidth(), size.width) << name;
            ASSERT_EQ(read.getHeight(), size.height) << name;
            unsigned wrong = 0;
            for (unsigned y = 0; y < size.height; ++y) {
                for (unsigned x = 0; x < size.width; ++x)
                    wrong += read.at8(x, y) != image.at8(x, y);
            }
            EXPECT_EQ(wrong, 0u) << name << ", " << size.width << " by " << size.height;
        }
    }
}

TEST(PngEncoder, MakesNoLargerFilesThanAnother)
{
    const TemporaryFolder folder;
    constexpr tool::FrameSize size{320, 180};
    for (const auto& [name, color] : g_paints) {
        const Image image = paint(size, color);
        std::vector<uint8_t> pixels = toPixels(image);
        tool::PngEncoder encoder;
        const std::size_t bytes = encoder.encode(pixels, size).size();
        ASSERT_TRUE(writePng(folder.file("other.png"), image));
        EXPECT_LT(static_cast<double>(bytes),
                  1.1 * static_cast<double>(std::filesystem::file_size(folder.file("other.png"))))
            << name;
    }
}

TEST(PngWriter, NamesTheFrameThatCouldNotBeWrittenAtTheNextOne)
{
    const TemporaryFolder folder;
    ASSERT_TRUE(writeFile(folder.file("file"), "in the way"));
    const auto pattern = tool::FramePattern::parse(folder.file("file/%d.png"));
    const auto writer = tool::createPngWriter(*pattern, {4, 4});
    std::vector<uint8_t> pixels(64);
    EXPECT_EQ(writer->write(3, pixels), "");
    pixels.resize(64);
    const std::string expected = folder.file("file/3.png") + ": can't be written: Not a directory";
    EXPECT_EQ(writer->write(4, pixels), expected);
    EXPECT_EQ(writer->finish(), expected);
}

} // namespace helvantine::test
