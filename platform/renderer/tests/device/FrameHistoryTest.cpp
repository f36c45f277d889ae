// SPDX-License-Identifier: MIT
// What the renderer tells of pictures that depend on frames that were left out.
#include "DeviceTest.h"

#include <helvantine/core/Matrix.h>
#include <helvantine/renderer/Query.h>
#include <helvantine/renderer/ScreenRenderer.h>

#include <cmath>
#include <functional>

namespace helvantine::test
{

namespace
{

const Vec4 red(1, 0, 0, 0.5f);

class FrameHistoryTest : public DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        m_a = makeTarget(8, 8, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_D24_UNORM_S8_UINT);
        m_b = makeTarget(8, 8, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_R32_TYPELESS, 4);
        m_query = createQuery();
    }

    void TearDown() override
    {
        m_a = m_b = nullptr;
        m_query = nullptr;
        DeviceTest::TearDown();
    }

    void into(const SmartRef<RenderTarget>& target, const std::function<void()>& body)
    {
        renderer().pushRenderTarget(target.get());
        body();
        renderer().popRenderTarget();
    }

    void clear(unsigned flags = Renderer::ClearColor) { renderer().clear(flags, red, 1.0f, 0); }

    void quad(float right = 1.0f, bool declared = true)
    {
        const std::array<Vec3, 4> corners = {Vec3(-1, 1, 0.5f), Vec3(right, 1, 0.5f), Vec3(right, -1, 0.5f),
                                             Vec3(-1, -1, 0.5f)};
        if (declared)
            renderer().declareQuad(corners, Matrix());
        drawQuad(*m_colorShader, makeQuad(red, 0.5f, -1, 1, right, -1));
    }

    /// A texture on the left half of what is on top.
    void show(Texture* texture)
    {
        const SmartRef<TextureSampler> sampler(createTextureSampler(
            D3D11_FILTER_MIN_MAG_MIP_POINT, D3D11_TEXTURE_ADDRESS_CLAMP, D3D11_TEXTURE_ADDRESS_CLAMP,
            D3D11_TEXTURE_ADDRESS_CLAMP, D3D11_COMPARISON_NEVER));
        texture->bind(0);
        sampler->bind(0);
        drawQuad(*m_textureShader, makeQuad(red, 0.5f, -1, 1, 0, -1));
        texture->unbind(0);
        sampler->unbind(0);
    }

    SmartRef<RenderTarget> m_a;
    SmartRef<RenderTarget> m_b;
    SmartRef<Query> m_query;
};

TEST_F(FrameHistoryTest, TellsWhatAFrameTakesFromThoseThatWereLeftOut)
{
    Texture* const a = m_a->getTexture();
    Texture* const b = m_b->getTexture();
    const auto blend = [&](BlendMode mode) {
        setBlend(mode);
        quad();
        setBlend(BlendMode::Solid);
    };
    const struct
    {
        const char* name;
        std::function<void()> frame; ///< drawn twice behind the gap, into the cleared back buffer
        bool carried;
        const RenderTarget* target;
    } cases[] = {
        {"cleared, then read", [&] { into(m_a, [&] { clear(), quad(0, false); }), show(a); }, false, nullptr},
        {"covered, then read", [&] { into(m_a, [&] { quad(); }), show(a); }, false, nullptr},
        {"trails", [&] { into(m_a, [&] { blend(BlendMode::Alpha); }), show(a); }, true, m_a.get()},
        {"drawn in part", [&] { into(m_a, [&] { quad(0.98f); }), show(a); }, true, m_a.get()},
        {"undeclared", [&] { into(m_a, [&] { quad(1, false); }), show(a); }, true, m_a.get()},
        {"a part of the viewport",
         [&] {
             const SmartRef<Viewport> left(new Viewport(0, 0, 4, 8));
             into(m_a, [&] { renderer().pushViewport(left.get()), quad(), renderer().popViewport(); });
             show(a);
         },
         true, m_a.get()},
        {"nothing but depth cleared", [&] { into(m_a, [&] { clear(Renderer::ClearDepth); }), show(a); }, true,
         m_a.get()},
        {"old depth decides",
         [&] {
             into(m_a, [&] { clear(), setDepth({}), quad(0), bindDefaults(); });
             show(a);
         },
         true, m_a.get()},
        {"cleared depth decides",
         [&] {
             into(m_a, [&] {
                 clear(Renderer::ClearColor | Renderer::ClearDepth), setDepth({}), quad(0), bindDefaults();
             });
             show(a);
         },
         false, nullptr},
        {"old depth read", [&] { show(m_b->getDepthTexture()); }, true, m_b.get()},
        {"feedback of one frame", [&] { show(a), into(m_a, [&] { clear(); }); }, false, nullptr},
        {"feedback of two frames",
         [&] {
             show(b);
             into(m_b, [&] { renderer().getScreenRenderer()->drawTexture(a, red, false, -1); });
             into(m_a, [&] { clear(); });
         },
         true, m_a.get()},
        {"ping-pong",
         [&] {
             into(m_a, [&] { clear(), show(b); });
             into(m_b, [&] { clear(), show(a); });
             show(b);
         },
         true, m_b.get()},
        {"unread", [&] { into(m_a, [&] { blend(BlendMode::Additive); }), into(m_b, [&] { show(a); }); },
         false, nullptr},
        {"a copy of trails",
         [&] {
             into(m_a, [&] { blend(BlendMode::Alpha); });
             into(m_b, [&] { renderer().getScreenRenderer()->drawTexture(a, red, false, -1); });
             show(b);
         },
         true, m_a.get()},
        {"a query's answer", [&] { m_query->getOcclusionQueryData(); }, true, nullptr},
        {"a slot nobody sets",
         [&] {
             drawQuad(*makeShader("return elsewhere.Load(0);", "Texture2D elsewhere : register(t9);"),
                      makeQuad(red));
         },
         true, nullptr},
    };
    for (const auto& [name, frame, carried, target] : cases) {
        const auto drawFrame = [&, &body = frame] {
            draw([&] {
                bindDefaults();
                body();
            });
        };
        drawFrame();
        renderer().skipFrames();
        drawFrame();
        drawFrame();
        const CarriedPicture picture = renderer().findCarried(nullptr);
        EXPECT_EQ(picture.any, carried) << name;
        EXPECT_EQ(picture.target, target) << name;
    }
}

TEST_F(FrameHistoryTest, FollowsNothingBeforeFramesAreLeftOut)
{
    draw([&] {
        bindDefaults();
        show(m_a->getTexture());
        m_query->getOcclusionQueryData();
    });
    EXPECT_FALSE(renderer().findCarried(nullptr).any);
    renderer().skipFrames();
    EXPECT_TRUE(renderer().findCarried(m_a.get()).any);
    // It might have been made in a frame that was left out.
    const SmartRef<RenderTarget> late = makeTarget(4, 4);
    EXPECT_TRUE(renderer().findCarried(late.get()).any);
}

TEST_F(FrameHistoryTest, FindsOutWhetherAQuadCovers)
{
    renderer().skipFrames();
    const Matrix turned = MatrixRotateZ(0.5f);
    const struct
    {
        std::array<Vec3, 4> corners;
        Matrix toClip;
        bool covers;
    } cases[] = {
        {{Vec3(-1, 1, 0), Vec3(1, 1, 0), Vec3(1, -1, 0), Vec3(-1, -1, 0)}, {}, true},
        {{Vec3(1, 1, 0), Vec3(-1, 1, 0), Vec3(-1, -1, 0), Vec3(1, -1, 0)}, {}, true}, // mirrored
        {{Vec3(-1, 1, 0), Vec3(1, 1, 0), Vec3(1, -1, 0), Vec3(-1, -1, 0)}, turned, false},
        {{Vec3(-2, 2, 0), Vec3(2, 2, 0), Vec3(2, -2, 0), Vec3(-2, -2, 0)}, turned, true},
        {{Vec3(-1, 1, 0), Vec3(1, -1, 0), Vec3(1, 1, 0), Vec3(-1, -1, 0)}, {}, false}, // a bow
        {{Vec3(-2, 2, 2), Vec3(2, 2, 2), Vec3(2, -2, 2), Vec3(-2, -2, 2)}, {}, false}, // clipped by depth
        {{Vec3(-1, 1, 0), Vec3(1, 1, 0), Vec3(1, -1, 0), Vec3(NAN, -1, 0)}, {}, false},
        {{Vec3(0, 0, 0), Vec3(0, 0, 0), Vec3(0, 0, 0), Vec3(0, 0, 0)}, {}, false},
    };
    for (const auto& [corners, toClip, covers] : cases) {
        renderer().skipFrames();
        draw([&] {
            bindDefaults();
            into(m_a, [&, &ring = corners, &matrix = toClip] {
                renderer().declareQuad(ring, matrix);
                quad(1, false);
            });
        });
        EXPECT_NE(renderer().findCarried(m_a.get()).any, covers) << &corners - &cases[0].corners;
    }
}

} // namespace

} // namespace helvantine::test
