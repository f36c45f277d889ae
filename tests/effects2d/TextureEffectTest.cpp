// SPDX-License-Identifier: MIT
#include "EffectTest.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureColorCorrectionEffect.h>
#include <helvantine/effects2d/TextureEffectSharedData.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/testsupport/AllocationCount.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <algorithm>
#include <cmath>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

class TextureEffectTest : public EffectTest
{
protected:
    static SmartRef<ProbeEffect> makeEffect(const Resource* source)
    {
        SmartRef<ProbeEffect> effect(new ProbeEffect());
        if (source)
            effect->m_textureProperty = uniqueIdToString(source->getId());
        return effect;
    }
};

TEST_F(TextureEffectTest, DrawsItsImageUprightWhereItStandsOnTheScreen)
{
    const Image source = makeNoise(6, 4, 21);
    const SmartRef<RenderTargetResource> resource = addTarget(source);
    const SmartRef<ProbeEffect> effect = makeEffect(resource.get());
    const Vec4 color(1, 0.5f, 0.25f, 1);
    effect->m_color = color;
    effect->m_position = Vec3(320, 135, 0);
    effect->m_size = Vec2(240, 270);
    update(*effect);

    // 24 by 8 pixels show 960 by 540 units: the quad takes columns 8 to 13 and rows 2 to 5, texel by texel.
    const SmartRef<RenderTarget> target = makeTarget(24, 8, DXGI_FORMAT_B8G8R8A8_UNORM);
    const Vec4 background(0.2f, 0.4f, 0.6f, 0.8f);
    drawFrame(target.get(), background, [&] { render(*effect); });
    Image expected(24, 8, background);
    for (unsigned y = 0; y < 4; ++y)
        for (unsigned x = 0; x < 6; ++x)
            expected.at(x + 8, y + 2) = source.at(x, y) * color;
    EXPECT_TRUE(matches(read(target.get()), expected, rasterTolerance));
}

TEST_F(TextureEffectTest, BlendsAsItsModeSays)
{
    const Vec4 s(0.5f, 0.9f, 0.2f, 0.6f);
    const Vec4 d(0.3f, 0.4f, 0.8f, 0.7f);
    const float rest = 1 - s.w;
    const Vec4 expected[] = {
        s,
        Vec4(s.x * s.w + d.x, s.y * s.w + d.y, s.z * s.w + d.z, s.w + d.w),
        Vec4(s.x * s.w + d.x * rest, s.y * s.w + d.y * rest, s.z * s.w + d.z * rest, s.w + d.w * rest),
        Vec4(d.x * s.x, d.y * s.y, d.z * s.z, d.w),
        Vec4(s.x + d.x * rest, s.y + d.y * rest, s.z + d.z * rest, s.w + d.w * rest),
        s, // an unknown mode replaces
    };
    const SmartRef<RenderTargetResource> white = addTarget(Image(2, 2, Vec4(1, 1, 1, 1)));
    const SmartRef<ProbeEffect> effect = makeEffect(white.get());
    const SmartRef<RenderTarget> target = makeTarget(5, 3, DXGI_FORMAT_B8G8R8A8_UNORM);
    effect->m_color = s;
    for (int mode = 0; mode < 6; ++mode) {
        SCOPED_TRACE(mode);
        effect->m_blend = mode;
        const Vec4& e = expected[mode];
        const Vec4 clamped(std::min(e.x, 1.0f), std::min(e.y, 1.0f), std::min(e.z, 1.0f),
                           std::min(e.w, 1.0f));
        EXPECT_TRUE(matches(drawOverScreen(*effect, target.get(), d), Image(5, 3, clamped), rasterTolerance));
    }
    EXPECT_EQ(effect->m_blend.m_enumLabels.size(), 5u);
    EXPECT_EQ(effect->m_blend.m_enumLabels[4], "Premultiplied");
}

TEST_F(TextureEffectTest, ReadsItsRectangleAndBeyondItAsWrapSays)
{
    const Image source = makeNoise(4, 3, 22);
    const SmartRef<RenderTargetResource> resource = addTarget(source);
    const SmartRef<ProbeEffect> effect = makeEffect(resource.get());
    const SmartRef<RenderTarget> target = makeTarget(12, 9);

    const auto clamp = [](int i, int n) { return std::clamp(i, 0, n - 1); };
    const auto repeat = [](int i, int n) { return (i + n) % n; };
    const auto mirror = [](int i, int n) { return i < 0 ? -1 - i : i < n ? i : 2 * n - 1 - i; };
    const struct
    {
        int wrap;
        int (*texel)(int, int);
    } cases[] = {{0, clamp}, {1, repeat}, {2, mirror}, {7, mirror}, {-1, mirror}};
    effect->m_uvRect = Vec4(-1, -1, 2, 2);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.wrap);
        effect->m_wrap = c.wrap;
        Image expected(12, 9);
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 12; ++x)
                expected.at(x, y) = source.at(c.texel(x - 4, 4), c.texel(y - 3, 3));
        EXPECT_TRUE(matches(drawOverScreen(*effect, target.get()), expected, floatTolerance));
    }

    effect->m_uvRect = Vec4(0.75f, 1, 0.25f, 0); // turned round: right to left, bottom to top
    const Image expected =
        makeImage(12, 9, [&](Vec2 uv) { return readLinear(source, Vec2(0.75f - uv.x * 0.5f, 1 - uv.y)); });
    effect->m_wrap = 0;
    EXPECT_TRUE(matches(drawOverScreen(*effect, target.get()), expected, Tolerance{1.0f}));
}

TEST_F(TextureEffectTest, InTheWorldItTestsAndWritesDepth)
{
    const SmartRef<RenderTargetResource> white = addTarget(Image(2, 2, Vec4(1, 1, 1, 1)));
    const SmartRef<RenderTarget> target = makeTarget(8, 6, DXGI_FORMAT_R32G32B32A32_FLOAT, true);
    FxContext camera;
    camera.projection = MatrixOrthographic(-4, 4, -3, 3, 0, 10);

    const auto makeQuad = [&](const Vec4& color, float z, bool is3D) {
        SmartRef<ProbeEffect> quad = makeEffect(white.get());
        quad->m_color = color;
        quad->m_is3D = is3D;
        quad->m_position = is3D ? Vec3(2, 1.5f, z) : Vec3();
        quad->m_size = is3D ? Vec2(4, 3) : Vec2(960, 540);
        update(*quad, camera);
        return quad;
    };
    const Vec4 red(1, 0, 0, 1), green(0, 1, 0, 1), blue(0, 0, 1, 1);
    const SmartRef<ProbeEffect> near = makeQuad(red, 2, true);
    const SmartRef<ProbeEffect> far = makeQuad(green, 5, true);
    const SmartRef<ProbeEffect> screen = makeQuad(blue, 0, false);

    // y grows upwards: the quads stand in the upper right quarter.
    const auto expectQuarter = [&](const Vec4& quarter, const Vec4& rest) {
        EXPECT_TRUE(
            matches(read(target.get()),
                    makeImage(8, 6, [&](Vec2 uv) { return uv.x > 0.5f && uv.y < 0.5f ? quarter : rest; }),
                    floatTolerance));
    };
    drawFrame(target.get(), Vec4(), [&] {
        render(*near);
        render(*far);
    });
    expectQuarter(red, Vec4());
    drawFrame(target.get(), Vec4(), [&] {
        render(*screen); // covers all, but leaves no depth
        render(*far);
    });
    expectQuarter(green, blue);
}

TEST_F(TextureEffectTest, FindsItsSourceWhenThePropertyChanges)
{
    ResourceManager& resources = *getResourceManager();
    const SmartRef<RenderTargetResource> target = addTarget(Image(2, 2, Vec4(0.25f, 0.5f, 0.75f, 1)));
    SmartRef<ProbeEffect> effect = makeEffect(target.get());
    EXPECT_EQ(effect->getSourceTexture(), target->getRenderTarget()->getTexture());

    // A texture of the same id wins, but is asked for only when the property changes.
    const SmartRef<TextureResource> texture(new TextureResource());
    resources.addTemporaryResource(target->getId(), texture.get());
    EXPECT_NE(effect->getSourceTexture(), nullptr);
    effect->m_textureProperty = std::string();
    EXPECT_EQ(effect->getSourceTexture(), nullptr);
    effect->m_textureProperty = uniqueIdToString(target->getId());
    EXPECT_EQ(effect->getSourceTexture(), nullptr); // the texture has no payload

    // What is drawn without a source is zero, and replaces what was there.
    const SmartRef<RenderTarget> screen = makeTarget(3, 3);
    EXPECT_TRUE(
        matches(drawOverScreen(*effect, screen.get(), Vec4(1, 1, 1, 1)), Image(3, 3), floatTolerance));

    // The effect keeps its source when the tree gives it up.
    resources.removeTemporaryResource(target->getId());
    effect->m_textureProperty = std::string();
    effect->m_textureProperty = uniqueIdToString(target->getId());
    resources.getRoot()->removeResource(target.get());
    EXPECT_TRUE(matches(drawOverScreen(*effect, screen.get()), Image(3, 3, Vec4(0.25f, 0.5f, 0.75f, 1)),
                        floatTolerance));
}

TEST_F(TextureEffectTest, DrawsATextureFromAFileUpright)
{
    Image picture(2, 2, Vec4(1, 1, 1, 1));
    picture.at(0, 0) = Vec4(1, 0, 0, 1);
    picture.at(1, 0) = Vec4(0, 1, 0, 1);
    picture.at(0, 1) = Vec4(0, 0, 1, 1);
    ASSERT_TRUE(writePng(folder().file("picture.png"), picture));

    const SmartRef<TextureResource> texture(new TextureResource());
    ASSERT_TRUE(texture->load("picture.png"));
    getResourceManager()->getRoot()->addResource(texture.get());
    const SmartRef<ProbeEffect> effect = makeEffect(texture.get());
    const SmartRef<RenderTarget> target = makeTarget(2, 2, DXGI_FORMAT_B8G8R8A8_UNORM);
    EXPECT_TRUE(matches(drawOverScreen(*effect, target.get()), picture, rasterTolerance));
}

TEST_F(TextureEffectTest, AFinalPassDrawsAnyTextureOnTheEffectsQuad)
{
    const Image source = makeNoise(4, 4, 23);
    const SmartRef<Texture> texture = makeTexture(source);
    const SmartRef<ProbeEffect> effect = makeEffect(nullptr);
    const SmartRef<RenderTarget> target = makeTarget(4, 4);
    effect->m_size = Vec2(960, 540);
    update(*effect);
    drawFrame(target.get(), Vec4(), [&] {
        FxRenderContext context;
        ASSERT_TRUE(ProbeEffect::prepareSharedData());
        effect->drawFinalPass(context, TextureEffectType::Texture, texture.get());
    });
    EXPECT_TRUE(matches(read(target.get()), source, floatTolerance));
}

TEST_F(TextureEffectTest, SharesWhatItDrawsWithUntilTheLastOneGoes)
{
    EXPECT_EQ(TextureEffect::s_sharedData, nullptr);
    SmartRef<ProbeEffect> first = makeEffect(nullptr);
    const SmartRef<RenderTarget> target = makeTarget(3, 3);
    drawOverScreen(*first, target.get());
    const Shader* program = TextureEffect::s_shaderCache->getShader(TextureEffectType::Texture);
    EXPECT_NE(program, nullptr);

    SmartRef<ProbeEffect> second = makeEffect(nullptr);
    first = nullptr;
    second->m_blend = 1;
    drawOverScreen(*second, target.get());
    EXPECT_EQ(TextureEffect::s_shaderCache->getShader(TextureEffectType::Texture), program);
    second = nullptr;
    EXPECT_EQ(TextureEffect::s_sharedData, nullptr);
    EXPECT_EQ(TextureEffect::s_shaderCache, nullptr);
}

/// Has no device but those that its test makes.
class TextureEffectRenderers : public ProjectTest
{
protected:
    static void create(Renderer& renderer, RenderWindow& window)
    {
        DXGI_MODE_DESC mode = {};
        mode.Width = 4;
        mode.Height = 3;
        ASSERT_TRUE(window.create(4, 3, "", 0, nullptr));
        ASSERT_TRUE(renderer.create(mode, false, false, 1, 0, &window, true));
    }

    /// Without a source it reads transparent black, and replaces what was there.
    static void drawWithNewRenderer(TextureEffect& effect, const Vec4& expected)
    {
        RenderWindow window;
        Renderer renderer;
        create(renderer, window);
        renderer.beginFrame(nullptr);
        renderer.clear(Renderer::ClearColor, Vec4(1, 1, 1, 1), 1.0f, 0);
        FxRenderContext context;
        effect.render(context);
        renderer.endFrame();
        EXPECT_TRUE(matches(readImage(renderer, nullptr), Image(4, 3, expected), rasterTolerance));
        expectCleanRenderer(renderer);
    }
};

TEST_F(TextureEffectRenderers, MayComeLateAndMayChange)
{
    const SmartRef<ProbeEffect> plain(new ProbeEffect());
    const SmartRef<TextureColorCorrectionEffect> corrected(new TextureColorCorrectionEffect());
    set(*corrected, "Color Correction", "Contrast", "0"); // its constants make all of it grey
    FxUpdateContext update;
    update.fov = 45.0f;
    FxRenderContext context;
    for (TextureEffect* effect : std::initializer_list<TextureEffect*>{plain.get(), corrected.get()}) {
        set(*effect, "Transformation", "Size", "960, 540");
        effect->update(update);
        effect->render(context); // nothing to draw with yet
    }
    for (int i = 0; i < 2; ++i) { // the second may well take the first one's address
        drawWithNewRenderer(*plain, Vec4());
        drawWithNewRenderer(*corrected, Vec4(0.5f, 0.5f, 0.5f, 0));
    }
    plain->render(context);
    corrected->render(context);
}

TEST_F(TextureEffectRenderers, AllocateNothingInASteadyFrame)
{
    Renderer::enableValidation(false); // the layer's allocations would be counted
    RenderWindow window;
    Renderer renderer;
    create(renderer, window);
    const SmartRef<RenderTargetResource> target(new RenderTargetResource());
    ASSERT_TRUE(target->create(2, 2, RenderTargetResource::RGBA8, 1, 0, true, RenderTargetResource::D24S8));
    document().getResourceManager()->getRoot()->addResource(target.get());
    const std::string id = uniqueIdToString(target->getId());

    // One quad is drawn into the target, another shows it.
    Effect& root = *composition().m_rootEffect;
    const SmartRef<RenderTargetEffect> inside(new RenderTargetEffect());
    set(*inside, "Attributes", "Render Target", id);
    const SmartRef<ProbeEffect> first(new ProbeEffect()), second(new ProbeEffect());
    second->m_textureProperty = id;
    root.addObject(inside.get(), -1);
    inside->addObject(first.get(), -1);
    root.addObject(second.get(), -1);
    for (Object* object : std::initializer_list<Object*>{inside.get(), first.get(), second.get()})
        object->setEnd(100);

    const auto drawFrame = [&](int frame) {
        tick(frame);
        renderer.beginFrame(nullptr);
        FxRenderContext context;
        context.frame = frame;
        root.render(context);
        renderer.endFrame();
    };
    for (int frame = 0; frame < 8; ++frame)
        drawFrame(frame);
    const std::size_t before = countAllocations();
    for (int frame = 8; frame < 16; ++frame)
        drawFrame(frame);
    EXPECT_EQ(countAllocations() - before, 0u);
    EXPECT_EQ(renderer.getStats().drawsLastFrame, 2u);
    Renderer::enableValidation(true);
}

} // namespace
