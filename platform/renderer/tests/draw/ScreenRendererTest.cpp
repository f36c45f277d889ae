// SPDX-License-Identifier: MIT
#include "image/PictureFile.h"

#include <helvantine/renderer/ScreenRenderer.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/Viewport.h>
#include <helvantine/testsupport/RenderingTest.h>

namespace helvantine::test
{
namespace
{

constexpr unsigned width = 32;
constexpr unsigned height = 24;
const Vec4 white(1, 1, 1, 1);

class ScreenRendererTest : public RenderingTest
{
protected:
    ScreenRendererTest() : RenderingTest(width, height) {}

    ScreenRenderer& screen() { return *renderer().getScreenRenderer(); }

    /// RGBA texels, one array for each mip.
    SmartRef<Texture> makeTexture(unsigned texelsX, unsigned texelsY, const std::vector<Bytes>& mips)
    {
        D3D11_TEXTURE2D_DESC desc;
        desc.Width = texelsX;
        desc.Height = texelsY;
        desc.MipLevels = unsigned(mips.size());
        desc.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
        desc.Usage = D3D11_USAGE_IMMUTABLE;
        desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
        std::vector<D3D11_SUBRESOURCE_DATA> data;
        for (unsigned mip = 0; mip < mips.size(); ++mip)
            data.push_back({mips[mip].data(), std::max(1u, texelsX >> mip) * 4, 0});
        ID3D11Texture2D* made = nullptr;
        EXPECT_EQ(renderer().getDevice()->CreateTexture2D(&desc, data.data(), &made), 0);
        SmartRef<Texture> texture = createTexture(made);
        if (made)
            made->Release();
        return texture;
    }

    SmartRef<Texture> makeColor(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha)
    {
        return makeTexture(1, 1, {{red, green, blue, alpha}});
    }

    static SmartRef<RenderTarget> makeFloatTarget()
    {
        return createRenderTarget(width, height, DXGI_FORMAT_R32G32B32A32_FLOAT, 1, 0, 0);
    }
};

TEST_F(ScreenRendererTest, CopiesATextureOfTheTargetsSizeExactly)
{
    const Bytes texels = makePattern(width, height);
    const SmartRef<Texture> texture = makeTexture(width, height, {texels});
    const Image image = draw([&] { screen().drawTexture(texture.get(), white, false, -1); });
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            const uint8_t* texel = &texels[(y * width + x) * 4];
            ASSERT_EQ(image.at8(x, y), (Image::Pixel8{texel[0], texel[1], texel[2], texel[3]}))
                << x << ", " << y;
        }
    }
}

TEST_F(ScreenRendererTest, ColoursAndBlends)
{
    const SmartRef<Texture> texture = makeColor(100, 200, 50, 128);
    const auto drawOverGreen = [&](const Vec4& color, bool blend) {
        const Image image = draw([&] {
            renderer().clear(Renderer::ClearColor, {0, 1, 0, 1}, 1, 0);
            screen().drawTexture(texture.get(), color, blend, -1);
        });
        EXPECT_EQ(image.at8(0, 0), image.at8(width - 1, height - 1));
        return image.at8(3, 3);
    };
    EXPECT_EQ(drawOverGreen({0.5f, 1, 0, 1}, false), (Image::Pixel8{50, 200, 0, 128}));
    const Image::Pixel8 blended = drawOverGreen(white, true);
    EXPECT_NEAR(blended[0], 50, 1);
    EXPECT_NEAR(blended[1], 227, 1);
    EXPECT_NEAR(blended[2], 25, 1);
    EXPECT_NEAR(blended[3], 255, 1);
}

TEST_F(ScreenRendererTest, ReadsTheMipAsked)
{
    Bytes large(8 * 8 * 4, 10);
    const SmartRef<Texture> texture = makeTexture(8, 8, {large, Bytes(4 * 4 * 4, 20), Bytes(2 * 2 * 4, 30)});
    for (int mip = 0; mip < 3; ++mip) {
        const Image image = draw([&] { screen().drawTexture(texture.get(), white, false, mip); });
        EXPECT_EQ(image.at8(20, 10)[0], 10 * (mip + 1));
    }
    const Image left = draw([&] { screen().drawTexture(texture.get(), white, false, -1); });
    EXPECT_EQ(left.at8(20, 10)[0], 10) << "magnified, the sampler takes the largest";
}

TEST_F(ScreenRendererTest, FillsTheViewportOnTop)
{
    const SmartRef<Texture> texture = makeColor(255, 255, 255, 255);
    const SmartRef<Viewport> viewport = new Viewport(4, 6, 10, 8);
    const Image image = draw([&] {
        renderer().pushViewport(viewport.get());
        screen().drawTexture(texture.get(), white, false, -1);
        renderer().popViewport();
    });
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x)
            ASSERT_EQ(image.at8(x, y)[0] != 0, x >= 4 && x < 14 && y >= 6 && y < 14) << x << ", " << y;
    }
}

TEST_F(ScreenRendererTest, BlursADotEvenlyInBothDirections)
{
    Bytes dot(width * height * 4, 0);
    for (unsigned channel = 0; channel < 4; ++channel)
        dot[(12 * width + 16) * 4 + channel] = 255;
    const SmartRef<Texture> texture = makeTexture(width, height, {dot});
    const SmartRef<RenderTarget> across = makeFloatTarget();
    const SmartRef<RenderTarget> both = makeFloatTarget();
    const Image shown =
        draw([&] { screen().drawBlur(texture.get(), across.get(), both.get(), white, false, -1); });
    const Image row = readImage(renderer(), across.get());
    const Image blurred = readImage(renderer(), both.get());

    double sum = 0;
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            sum += double(blurred.at(x, y).x);
            EXPECT_TRUE(y == 12 || row.at(x, y).x == 0.0f) << "first across only";
        }
    }
    EXPECT_NEAR(sum, 1.0, 1e-4);
    EXPECT_GT(blurred.at(16, 12).x, blurred.at(17, 12).x);
    for (unsigned step = 1; step <= 4; ++step) {
        const float right = blurred.at(16 + step, 12).x;
        EXPECT_GT(right, 0.0f);
        EXPECT_FLOAT_EQ(blurred.at(16 - step, 12).x, right);
        EXPECT_FLOAT_EQ(blurred.at(16, 12 - step).x, right);
        EXPECT_FLOAT_EQ(blurred.at(16, 12 + step).x, right);
    }
    EXPECT_EQ(blurred.at(21, 12).x, 0.0f);
    EXPECT_NEAR(shown.at(16, 12).x, blurred.at(16, 12).x, 0.003f);
}

TEST_F(ScreenRendererTest, WithoutATextureItReadsZeroAndWithoutBothTargetsItDoesNotBlur)
{
    const SmartRef<Texture> texture = makeColor(255, 255, 255, 255);
    const SmartRef<RenderTarget> target = makeFloatTarget();
    const SmartRef<RenderTarget> depthOnly = createRenderTarget(8, 8, 0, 1, 0, DXGI_FORMAT_R32_TYPELESS);
    const Image image = draw([&] {
        screen().drawTexture(texture.get(), white, false, -1);
        screen().drawTexture(nullptr, white, false, -1);
        screen().drawBlur(texture.get(), target.get(), nullptr, white, true, -1);
        screen().drawBlur(texture.get(), depthOnly.get(), target.get(), white, true, -1);
    });
    EXPECT_EQ(image.at8(5, 5), (Image::Pixel8{0, 0, 0, 0}));
}

} // namespace
} // namespace helvantine::test
