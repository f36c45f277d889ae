// SPDX-License-Identifier: MIT
#include "EffectFixture.h"

#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace helvantine::test
{

std::unique_ptr<Application> EffectFixture::s_application;

Picture::Picture(unsigned w, unsigned h, const std::function<Vec4(Vec2)>& color) : Picture(w, h)
{
    for (unsigned y = 0; y < h; ++y)
        for (unsigned x = 0; x < w; ++x)
            at(x, y) = color(centre(x, y));
}

Vec4 Picture::nearest(Vec2 texCoord) const
{
    const auto texel = [](float coordinate, unsigned size) {
        return static_cast<unsigned>(std::clamp(std::floor(coordinate * size), 0.0f, size - 1.0f));
    };
    return at(texel(texCoord.x, width), texel(texCoord.y, height));
}

Vec4 Picture::linear(Vec2 texCoord) const
{
    const float x = std::floor(texCoord.x * width - 0.5f);
    const float y = std::floor(texCoord.y * height - 0.5f);
    const float fx = texCoord.x * width - 0.5f - x;
    const float fy = texCoord.y * height - 0.5f - y;
    const auto texel = [&](float tx, float ty) {
        return nearest(Vec2((tx + 0.5f) / width, (ty + 0.5f) / height));
    };
    return (texel(x, y) * (1 - fx) + texel(x + 1, y) * fx) * (1 - fy) +
           (texel(x, y + 1) * (1 - fx) + texel(x + 1, y + 1) * fx) * fy;
}

Picture makeNoise(unsigned width, unsigned height, unsigned seed)
{
    unsigned state = seed * 2654435761u + 1;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        const float value = static_cast<float>(state >> 8) / 16777216.0f * 1.2f - 0.1f;
        return std::clamp(value, 0.0f, 1.0f);
    };
    return Picture(width, height, [&](Vec2) {
        const float r = next(), g = next(), b = next(), a = next();
        return Vec4(r, g, b, a);
    });
}

void expectSame(const Picture& actual, const Picture& expected, float tolerance)
{
    ASSERT_EQ(actual.width, expected.width);
    ASSERT_EQ(actual.height, expected.height);
    for (unsigned y = 0; y < actual.height; ++y) {
        for (unsigned x = 0; x < actual.width; ++x) {
            const Vec4& a = actual.at(x, y);
            const Vec4& e = expected.at(x, y);
            const bool same = std::abs(a.x - e.x) <= tolerance && std::abs(a.y - e.y) <= tolerance &&
                              std::abs(a.z - e.z) <= tolerance && std::abs(a.w - e.w) <= tolerance;
            ASSERT_TRUE(same) << "pixel " << x << ", " << y << ": " << a.x << " " << a.y << " " << a.z << " "
                              << a.w << ", expected " << e.x << " " << e.y << " " << e.z << " " << e.w;
        }
    }
}

void EffectFixture::SetUpTestSuite()
{
    takeProblems();
    Renderer::enableValidation(true);
    s_application = std::make_unique<Application>(getPath(getExecutablePath().c_str()).c_str(), true);
}

void EffectFixture::TearDownTestSuite()
{
    s_application.reset();
    Renderer::enableValidation(false);
}

void EffectFixture::SetUp()
{
    for (const Problem& problem : takeProblems())
        ASSERT_NE(problem.module, "renderer") << problem.text;
    ASSERT_NE(g_renderer, nullptr);
    s_application->newDocument(nullptr);
}

void EffectFixture::TearDown()
{
    for (const Problem& problem : takeProblems())
        EXPECT_NE(problem.module, "validation") << problem.text;
}

SmartRef<Texture> EffectFixture::makeTexture(const Picture& picture)
{
    D3D11_TEXTURE2D_DESC desc = {};
    desc.Width = picture.width;
    desc.Height = picture.height;
    desc.MipLevels = 1;
    desc.ArraySize = 1;
    desc.Format = DXGI_FORMAT_R32G32B32A32_FLOAT;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_IMMUTABLE;
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    const D3D11_SUBRESOURCE_DATA data = {picture.pixels.data(), picture.width * 16, 0};
    ID3D11Texture2D* image = nullptr;
    EXPECT_EQ(g_renderer->getDevice()->CreateTexture2D(&desc, &data, &image), 0);
    SmartRef<Texture> texture(createTexture(image));
    if (image)
        image->Release();
    EXPECT_TRUE(texture);
    return texture;
}

SmartRef<RenderTarget> EffectFixture::makeTarget(unsigned width, unsigned height, bool floats, bool depth)
{
    SmartRef<RenderTarget> target(createRenderTarget(
        width, height, floats ? DXGI_FORMAT_R32G32B32A32_FLOAT : DXGI_FORMAT_B8G8R8A8_UNORM, 1, 0,
        depth ? DXGI_FORMAT_D24_UNORM_S8_UINT : DXGI_FORMAT_UNKNOWN));
    EXPECT_TRUE(target);
    return target;
}

Picture EffectFixture::read(RenderTarget* target)
{
    Picture picture(target->getWidth(), target->getHeight());
    std::vector<uint8_t> bytes;
    EXPECT_TRUE(g_renderer->readBack(target, bytes));
    if (target->getFormat() == DXGI_FORMAT_R32G32B32A32_FLOAT) {
        EXPECT_EQ(bytes.size(), picture.pixels.size() * 16);
        std::memcpy(picture.pixels.data(), bytes.data(), bytes.size());
        return picture;
    }
    EXPECT_EQ(bytes.size(), picture.pixels.size() * 4);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
        const uint8_t* bgra = &bytes[i * 4];
        picture.pixels[i] = Vec4(bgra[2], bgra[1], bgra[0], bgra[3]) * (1.0f / 255.0f);
    }
    return picture;
}

void EffectFixture::drawFrame(RenderTarget* target, const Vec4& clear, const std::function<void()>& draw)
{
    g_renderer->beginFrame(target);
    g_renderer->clear(Renderer::ClearColor | Renderer::ClearDepth, clear, 1.0f, 0);
    draw();
    g_renderer->endFrame();
}

} // namespace helvantine::test
