// SPDX-License-Identifier: MIT
#include "PictureSamples.h"
#include "image/ImageDecoder.h"

#include <gtest/gtest.h>

namespace helvantine::test
{
namespace
{

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
    constexpr unsigned roundsOfSample = 400;
    for (const Bytes& sample : makeSamples()) {
        for (unsigned round = 0; round < roundsOfSample; ++round) {
            expectSound(damage(sample, round));
        }
    }
}

} // namespace
} // namespace helvantine::test
