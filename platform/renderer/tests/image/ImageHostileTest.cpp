// SPDX-License-Identifier: MIT
#include "DdsFile.h"
#include "LibraryFiles.h"
#include "image/ImageDecoder.h"

#include <gtest/gtest.h>

#include <random>

namespace helvantine::test
{
namespace
{

std::vector<Bytes> makeSamples()
{
    const Bytes pixels = makePattern(13, 9);
    DdsFile cube{.mipCount = 4, .pixelFlags = 4, .fourCC = makeFourCC("DXT5"), .caps2 = 0xfe00};
    cube.pixels = makeBytes(6 * 7 * 16);
    DdsFile masked{.pixelFlags = 0x41, .bitCount = 16, .masks = {0x7c00, 0x3e0, 0x1f, 0x8000}};
    masked.pixels = makeBytes(8 * 8 * 2);
    DdsFile extended;
    extended.dxgiFormat = 98;
    extended.pixels = makeBytes(4 * 16);
    return {
        encodePng(13, 9, pixels),
        PngFile{.width = 13, .height = 9, .interlaced = true, .rows = pixels}.write(),
        PngFile{.width = 13, .height = 9, .colorType = 3, .rows = pixels, .palette = {1, 2, 3}}.write(),
        JpegFile{.width = 13, .height = 9, .scans = JpegFile::OneForEachComponent, .pixels = pixels}.write(),
        JpegFile{.width = 13, .height = 9, .scans = JpegFile::Progressive, .pixels = pixels}.write(),
        encodeBmp(13, 9, pixels),
        encodeTga(13, 9, pixels),
        encodeJpg(13, 9, pixels),
        cube.write(),
        masked.write(),
        extended.write()};
}

/// Either a refusal with words or an image that is whole; and a look without pixels comes to the same.
void expectSound(const Bytes& file)
{
    std::string error;
    const std::optional<ImageData> image = decodeImage(file, error);
    ImageSource source(file);
    std::string checkError;
    const std::unique_ptr<ImageDecoder> decoder = openImage(source, checkError);
    EXPECT_EQ(decoder && decodeImage(*decoder, nullptr, checkError), image.has_value());
    EXPECT_EQ(checkError, error);
    EXPECT_EQ(error.empty(), image.has_value());
    if (image) {
        ASSERT_EQ(image->levels.size(), size_t(image->mipCount) * image->faceCount);
        EXPECT_EQ(image->bytes.size(), image->levels.back().offset + image->levels.back().size);
    }
}

TEST(ImageDecoder, FilesCutAnywhereAreRefused)
{
    for (const Bytes& sample : makeSamples()) {
        for (size_t size = 0; size < sample.size(); ++size) {
            // A copy of its own, so that a read behind the end is seen by the sanitizer.
            const Bytes cut(sample.begin(), sample.begin() + ptrdiff_t(size));
            expectSound(cut);
            std::string error;
            EXPECT_FALSE(decodeImage(cut, error)) << size << " of " << sample.size();
        }
        std::string error;
        EXPECT_TRUE(decodeImage(sample, error)) << error;
    }
}

TEST(ImageDecoder, DamagedBytesAreRefusedOrGiveAWholeImage)
{
    constexpr int roundsOfSample = 400;
    std::mt19937 random(4711);
    for (const Bytes& sample : makeSamples()) {
        for (int round = 0; round < roundsOfSample; ++round) {
            Bytes damaged = sample;
            for (unsigned change = random() % 4 + 1; change > 0; --change)
                damaged[random() % std::min<size_t>(damaged.size(), 200)] = static_cast<uint8_t>(random());
            expectSound(damaged);
        }
    }
}

} // namespace
} // namespace helvantine::test
