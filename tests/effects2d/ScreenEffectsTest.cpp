// SPDX-License-Identifier: MIT
#include "EffectTest.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

const Vec4 red(1, 0, 0, 1), green(0, 1, 0, 1), blue(0, 0, 1, 1), none;

class ScreenEffectsTest : public EffectTest
{
protected:
    static SmartRef<ClearScreenEffect> makeClear(const std::string& color, bool clearColor = true,
                                                 bool clearDepth = true)
    {
        SmartRef<ClearScreenEffect> effect(new ClearScreenEffect());
        set(*effect, "Attributes", "Color", color);
        set(*effect, "Attributes", "Clear Color Target", clearColor ? "1" : "0");
        set(*effect, "Attributes", "Clear Depth Target", clearDepth ? "1" : "0");
        return effect;
    }

    template <class T>
    static SmartRef<T> makeReference(const Resource* target)
    {
        SmartRef<T> effect(new T());
        if (target)
            set(*effect, "Attributes", "Render Target", uniqueIdToString(target->getId()));
        return effect;
    }
};

TEST_F(ScreenEffectsTest, ClearsColourAndDepthEachAsAsked)
{
    const SmartRef<RenderTargetResource> white = addTarget(Image(1, 1, Vec4(1, 1, 1, 1)));
    FxContext camera;
    camera.projection = MatrixOrthographic(-1, 1, -1, 1, 0, 10);
    const auto makeQuad = [&](const Vec4& color, float z) {
        SmartRef<ProbeEffect> quad(new ProbeEffect());
        quad->m_textureProperty = uniqueIdToString(white->getId());
        quad->m_color = color;
        quad->m_is3D = true;
        quad->m_size = Vec2(1, 2);
        quad->m_position = Vec3(-0.5f, 0, z);
        update(*quad, camera);
        return quad;
    };
    const SmartRef<ProbeEffect> near = makeQuad(blue, 2);
    const SmartRef<ProbeEffect> far = makeQuad(green, 5);
    const SmartRef<RenderTarget> target = makeTarget(6, 4, DXGI_FORMAT_R32G32B32A32_FLOAT, true);

    // Left: what the far quad meets where the near one was. Right: what is left of the background.
    const struct
    {
        bool color, depth;
        Vec4 left, right;
    } cases[] = {{true, true, green, red},
                 {true, false, red, red},
                 {false, true, green, none},
                 {false, false, blue, none}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.color << c.depth);
        const SmartRef<ClearScreenEffect> clear = makeClear("1, 0, 0, 1", c.color, c.depth);
        drawFrame(target.get(), none, [&] {
            render(*near);
            render(*clear);
            render(*far);
        });
        EXPECT_TRUE(matches(read(target.get()),
                            makeImage(6, 4, [&](Vec2 uv) { return uv.x < 0.5f ? c.left : c.right; }),
                            floatTolerance));
    }
}

TEST_F(ScreenEffectsTest, ChildrenOfNestedTargetsDrawIntoTheirOwn)
{
    const SmartRef<RenderTargetResource> outer = addTarget(Image(3, 2));
    const SmartRef<RenderTargetResource> inner = addTarget(Image(5, 4));
    const auto outerEffect = makeReference<RenderTargetEffect>(outer.get());
    const auto innerEffect = makeReference<RenderTargetEffect>(inner.get());
    const auto unset = makeReference<RenderTargetEffect>(nullptr);
    outerEffect->addObject(innerEffect.get(), -1);
    innerEffect->addObject(makeClear("0, 1, 0, 1").get(), -1);
    outerEffect->addObject(unset.get(), -1);
    unset->addObject(makeClear("1, 0, 0, 1").get(), -1); // behind the inner target: back in the outer one

    const SmartRef<RenderTarget> screen = makeTarget(7, 5);
    drawFrame(screen.get(), blue, [&] {
        render(*outerEffect);
        EXPECT_EQ(g_renderer->getRenderTarget(), screen.get());
        EXPECT_EQ(g_renderer->getRenderTargetCount(), 1u);
    });
    EXPECT_TRUE(matches(read(inner->getRenderTarget()), Image(5, 4, green), floatTolerance));
    EXPECT_TRUE(matches(read(outer->getRenderTarget()), Image(3, 2, red), floatTolerance));
    EXPECT_TRUE(matches(read(screen.get()), Image(7, 5, blue), floatTolerance));
}

TEST_F(ScreenEffectsTest, CopyBackbufferKeepsItsTargetAndDrawsNothing)
{
    const SmartRef<RenderTargetResource> held = addTarget(Image(3, 2, green));
    const auto copy = makeReference<CopyBackbufferEffect>(held.get());
    EXPECT_EQ(copy->getRenderTargetResource(), held.get());
    copy->addObject(makeClear("1, 0, 0, 1").get(), -1);
    const SmartRef<RenderTarget> screen = makeTarget(4, 4);
    drawFrame(screen.get(), blue, [&] { render(*copy); });
    EXPECT_TRUE(matches(read(screen.get()), Image(4, 4, red), floatTolerance));
    EXPECT_TRUE(matches(read(held->getRenderTarget()), Image(3, 2, green), floatTolerance));

    set(*copy, "Attributes", "Render Target", "");
    EXPECT_EQ(copy->getRenderTargetResource(), nullptr);
}

} // namespace
