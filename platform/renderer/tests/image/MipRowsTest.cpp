// SPDX-License-Identifier: MIT
#include "PictureFile.h"
#include "image/ImageDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace helvantine::test
{
namespace
{

/// How much of [a, a + 1) lies in [from, to).
double overlap(unsigned a, double from, double to)
{
    return std::max(0.0, std::min(to, a + 1.0) - std::max(from, double(a)));
}

/// The average over the area that a pixel of the smaller level covers, by the definition of a box filter.
double averageArea(const ImageData& image, unsigned mip, unsigned x, unsigned y, unsigned channel)
{
    const ImageData::Level& larger = image.getLevel(0, mip - 1);
    const ImageData::Level& level = image.getLevel(0, mip);
    const double stepX = double(larger.width) / level.width;
    const double stepY = double(larger.height) / level.height;
    double sum = 0;
    for (unsigned sy = 0; sy < larger.height; ++sy) {
        for (unsigned sx = 0; sx < larger.width; ++sx)
            sum += image.getPixels(0, mip - 1)[(sy * larger.width + sx) * 4 + channel] *
                   overlap(sx, x * stepX, (x + 1) * stepX) * overlap(sy, y * stepY, (y + 1) * stepY);
    }
    return sum / (stepX * stepY);
}

TEST(MipRows, EveryPixelIsTheAverageOfTheAreaItCovers)
{
    const unsigned sizes[][2] = {{16, 8}, {7, 5}, {9, 1}, {1, 6}, {13, 64}, {1, 1}};
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(::testing::Message() << width << " by " << height);
        const Bytes pattern = makePattern(width, height);
        std::string error;
        const std::optional<ImageData> decoded = decodeImage(encodePng(width, height, pattern), error);
        ASSERT_TRUE(decoded) << error;
        const ImageData& image = *decoded;

        EXPECT_EQ(image.levels.back().width, 1u);
        EXPECT_EQ(image.levels.back().height, 1u);
        for (unsigned mip = 1; mip < image.mipCount; ++mip) {
            const ImageData::Level& level = image.getLevel(0, mip);
            for (unsigned i = 0; i < level.size; ++i)
                ASSERT_NEAR(image.getPixels(0, mip)[i],
                            averageArea(image, mip, i / 4 % level.width, i / 4 / level.width, i % 4), 0.501)
                    << "mip " << mip << " byte " << i;
        }
    }
}

} // namespace
} // namespace helvantine::test
