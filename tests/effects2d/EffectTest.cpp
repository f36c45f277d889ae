// SPDX-License-Identifier: MIT
#include "EffectTest.h"

#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/resource/ResourceManager.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace helvantine::test
{

Image makeImage(unsigned width, unsigned height, const std::function<Vec4(Vec2)>& color)
{
    Image image(width, height);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            image.at(x, y) = color(Vec2((x + 0.5f) / width, (y + 0.5f) / height));
    return image;
}

Image makeNoise(unsigned width, unsigned height, unsigned seed)
{
    unsigned state = seed * 2654435761u + 1;
    const auto next = [&state] {
        state = state * 1664525u + 1013904223u;
        return std::clamp(static_cast<float>(state >> 8) / 16777216.0f * 1.2f - 0.1f, 0.0f, 1.0f);
    };
    return makeImage(width, height, [&](Vec2) {
        const float r = next(), g = next(), b = next(), a = next();
        return Vec4(r, g, b, a);
    });
}

Vec4 readNearest(const Image& image, Vec2 texCoord)
{
    const auto texel = [](float coordinate, unsigned size) {
        const auto last = static_cast<float>(size - 1);
        return static_cast<unsigned>(
            std::clamp(std::floor(coordinate * static_cast<float>(size)), 0.0f, last));
    };
    return image.at(texel(texCoord.x, image.getWidth()), texel(texCoord.y, image.getHeight()));
}

Vec4 readLinear(const Image& image, Vec2 texCoord)
{
    const Vec2 size(static_cast<float>(image.getWidth()), static_cast<float>(image.getHeight()));
    const Vec2 at = texCoord * size - Vec2(0.5f, 0.5f);
    const Vec2 first(std::floor(at.x), std::floor(at.y));
    const Vec2 part = at - first;
    const auto texel = [&](float x, float y) {
        return readNearest(image, Vec2((first.x + x + 0.5f) / size.x, (first.y + y + 0.5f) / size.y));
    };
    return (texel(0, 0) * (1 - part.x) + texel(1, 0) * part.x) * (1 - part.y) +
           (texel(0, 1) * (1 - part.x) + texel(1, 1) * part.x) * part.y;
}

void set(Object& object, const char* group, const char* name, const std::string& text)
{
    PropertyBase* property = object.findGroup(group)->findProperty(name);
    ASSERT_NE(property, nullptr) << name;
    property->fromString(text.c_str());
}

void set(Object& object, const char* group, const char* name, const Resource& resource)
{
    set(object, group, name, uniqueIdToString(resource.getId()));
}

SmartRef<Texture> EffectTest::makeTexture(const Image& image)
{
    D3D11_TEXTURE2D_DESC desc = {};
    desc.Width = image.getWidth();
    desc.Height = image.getHeight();
    desc.MipLevels = 1;
    desc.ArraySize = 1;
    desc.Format = DXGI_FORMAT_R32G32B32A32_FLOAT;
    desc.SampleDesc.Count = 1;
    desc.Usage = D3D11_USAGE_IMMUTABLE;
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    const D3D11_SUBRESOURCE_DATA data = {&image.at(0, 0), image.getWidth() * uint32_t{sizeof(Vec4)}, 0};
    ID3D11Texture2D* made = nullptr;
    EXPECT_EQ(g_renderer->getDevice()->CreateTexture2D(&desc, &data, &made), 0);
    SmartRef<Texture> texture(createTexture(made));
    if (made)
        made->Release();
    EXPECT_TRUE(texture);
    return texture;
}

SmartRef<RenderTarget> EffectTest::makeTarget(unsigned width, unsigned height, unsigned format, bool depth)
{
    SmartRef<RenderTarget> target(createRenderTarget(
        width, height, format, 1, 0, depth ? DXGI_FORMAT_D24_UNORM_S8_UINT : DXGI_FORMAT_UNKNOWN));
    EXPECT_TRUE(target);
    return target;
}

SmartRef<RenderTargetResource> EffectTest::addTarget(const Image& image)
{
    SmartRef<RenderTargetResource> resource(new RenderTargetResource());
    EXPECT_TRUE(resource->create(static_cast<int>(image.getWidth()), static_cast<int>(image.getHeight()),
                                 RenderTargetResource::RGBA32F, 1, 0, false, RenderTargetResource::D24S8));
    getResourceManager()->getRoot()->addResource(resource.get());

    const SmartRef<Texture> texture = makeTexture(image);
    const SmartRef<ProbeEffect> effect(new ProbeEffect());
    drawFrame(nullptr, Vec4(), [&] {
        EXPECT_TRUE(ProbeEffect::prepareSharedData());
        const ProbeEffect::Input inputs[] = {
            {texture.get(), TextureEffect::s_sharedData->m_clampSampler.get()}};
        effect->writeFullTargetQuad();
        ProbeEffect::bindPassStates();
        ProbeEffect::drawPass(TextureEffectType::Texture, resource->getRenderTarget(), inputs);
    });
    return resource;
}

SmartRef<TextureResource> EffectTest::addTexture(const Image& image) const
{
    // A dds file: the magic, a header of 31 words, and rows from the top.
    uint32_t header[32] = {};
    std::memcpy(header, "DDS ", 4);
    header[1] = 124;
    header[3] = image.getHeight();
    header[4] = image.getWidth();
    header[19] = 32; // size of the pixel format, whose flag says that a code follows
    header[20] = 4;
    header[21] = 116; // four 32-bit floats
    const std::size_t pixels = std::size_t{image.getWidth()} * image.getHeight();
    std::string bytes(reinterpret_cast<const char*>(header), sizeof(header));
    bytes.append(reinterpret_cast<const char*>(&image.at(0, 0)), pixels * sizeof(Vec4));

    SmartRef<TextureResource> resource(new TextureResource());
    const std::string name = uniqueIdToString(resource->getId()) + ".dds";
    EXPECT_TRUE(writeFile(folder().file(name), bytes));
    EXPECT_TRUE(resource->load(name.c_str()));
    getResourceManager()->getRoot()->addResource(resource.get());
    return resource;
}

void EffectTest::update(Effect& effect, const FxContext& context)
{
    FxUpdateContext updateContext;
    static_cast<FxContext&>(updateContext) = context;
    if (updateContext.fov == 0.0f)
        updateContext.fov = 45.0f;
    effect.update(updateContext);
}

void EffectTest::render(Effect& effect, const FxContext& context)
{
    FxRenderContext renderContext;
    static_cast<FxContext&>(renderContext) = context;
    effect.render(renderContext);
}

void EffectTest::drawFrame(RenderTarget* target, const Vec4& clear, const std::function<void()>& draw)
{
    g_renderer->beginFrame(target);
    g_renderer->clear(Renderer::ClearColor | Renderer::ClearDepth, clear, 1.0f, 0);
    draw();
    g_renderer->endFrame();
}

Image EffectTest::drawOverScreen(Effect2D& effect, RenderTarget* target, const Vec4& clear,
                                 const FxContext& context)
{
    set(effect, "Transformation", "Size", "960, 540");
    update(effect, context);
    drawFrame(target, clear, [&] { render(effect, context); });
    return read(target);
}

Image EffectTest::drawOverScreen(Effect2D& effect, unsigned width, unsigned height)
{
    const SmartRef<RenderTarget> target = makeTarget(width, height);
    return drawOverScreen(effect, target.get());
}

} // namespace helvantine::test
