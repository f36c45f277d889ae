// SPDX-License-Identifier: MIT
#include "image/PictureFile.h"

#include <helvantine/core/Report.h>
#include <helvantine/renderer/ScreenRenderer.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/testsupport/RenderingTest.h>

namespace helvantine::test
{
namespace
{

class MemoryTextureTest : public RenderingTest
{
protected:
    MemoryTextureTest() : RenderingTest(4, 4) {}

    /// The middle of what a level of the texture shows on the whole target.
    Image::Pixel8 show(Texture* texture, int mip)
    {
        const Image image = draw([&] {
            renderer().getScreenRenderer()->drawTexture(texture, {1, 1, 1, 1}, false, mip);
        });
        return image.at8(1, 1);
    }

    static std::string takeProblem()
    {
        const std::vector<Problem> problems = takeProblems();
        return problems.size() == 1 ? problems[0].module + ": " + problems[0].text : "";
    }
};

TEST_F(MemoryTextureTest, ShowsTheBytesOfAFile)
{
    const Bytes file = encodePng(2, 2, {9, 8, 7, 255, 9, 8, 7, 255, 9, 8, 7, 255, 9, 8, 7, 255});
    const SmartRef<Texture> texture = createTextureFromMemory(file.data(), file.size(), "badge");
    ASSERT_TRUE(texture);
    EXPECT_EQ(texture->getWidth(), 2u);
    EXPECT_EQ(show(texture.get(), -1), (Image::Pixel8{9, 8, 7, 255}));

    EXPECT_EQ(createTextureFromMemory(file.data(), 20, "badge"), nullptr);
    EXPECT_EQ(takeProblem(), "texture: badge: png with a damaged header");
    EXPECT_EQ(createTextureFromMemory(nullptr, 20), nullptr);
    EXPECT_EQ(takeProblem(), "texture: picture in memory: not a png, bmp, tga, jpg or dds file");
}

TEST_F(MemoryTextureTest, ShowsPixelsOfAnyPitchWithMipsWhereTheyAreBytes)
{
    // Rows of 2 pixels, and 4 bytes that aren't part of the picture.
    const Bytes bytes = {0, 0, 0, 255, 40, 80, 120, 255, 99, 99, 99, 99, //
                         0, 0, 0, 255, 40, 80, 120, 255};
    const SmartRef<Texture> colors =
        createTextureFromPixels({DXGI_FORMAT_B8G8R8A8_UNORM, 2, 2, 12, bytes.data(), bytes.size()}, "colors");
    const float level = 0.2f;
    const SmartRef<Texture> floats =
        createTextureFromPixels({DXGI_FORMAT_R32_FLOAT, 1, 1, 0, &level, sizeof level}, "floats");
    ASSERT_TRUE(colors && floats);
    EXPECT_EQ(show(colors.get(), 1), (Image::Pixel8{60, 40, 20, 255}));
    EXPECT_EQ(show(floats.get(), -1)[0], 51);
}

TEST_F(MemoryTextureTest, SaysWhichPixelsDoNotAddUp)
{
    const Bytes bytes(28);
    const struct
    {
        TexturePixels pixels;
        const char* problem;
    } cases[] = {
        {{DXGI_FORMAT_R8G8B8A8_UNORM, 2, 4, 0, bytes.data(), bytes.size()},
         "texture: card: 2 by 4 pixels of format 28 are 4 rows of 8 bytes, 28 bytes with 8 from row to row "
         "are given"},
        {{DXGI_FORMAT_BC1_UNORM, 8, 8, 8, bytes.data(), bytes.size()},
         "texture: card: 8 by 8 pixels of format 71 are 2 rows of 16 bytes, 28 bytes with 8 from row to row "
         "are given"},
        {{DXGI_FORMAT_R8G8B8A8_UNORM, 1, 1, 0, nullptr, 4},
         "texture: card: 1 by 1 pixels of format 28 are 1 rows of 4 bytes, 0 bytes with 4 from row to row "
         "are given"},
        {{DXGI_FORMAT_R8G8B8A8_UNORM, 1, 16385, 4, bytes.data(), bytes.size()},
         "texture: card: no texture of 1 by 16385 pixels, sides from 1 to 16384 are possible"},
        {{DXGI_FORMAT_D24_UNORM_S8_UINT, 1, 1, 4, bytes.data(), bytes.size()},
         "texture: card: no texture of DXGI format 45"},
    };
    for (const auto& entry : cases) {
        EXPECT_EQ(createTextureFromPixels(entry.pixels, "card"), nullptr);
        EXPECT_EQ(takeProblem(), entry.problem);
    }
}

} // namespace
} // namespace helvantine::test
