// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/renderer/Query.h>

namespace helvantine::test
{

namespace
{

const Vec4 white(1, 1, 1, 1);

class QueryTest : public DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        m_query = createQuery();
    }

    void TearDown() override
    {
        m_query = nullptr;
        DeviceTest::TearDown();
    }

    SmartRef<Query> m_query;
};

TEST_F(QueryTest, CountsSamplesExactlyAndAnswersInTheNextFrame)
{
    EXPECT_EQ(m_query->getOcclusionQueryData(), -1);
    for (int frame = 0; frame < 3; ++frame) {
        draw([&] {
            EXPECT_EQ(m_query->dataAvailable(), frame > 0) << "off-line, the next frame knows";
            bindDefaults();
            renderer().clear(Renderer::ClearDepth, white, 0.5f, 0);
            setDepth({});
            m_query->begin();
            drawQuad(*m_colorShader, makeQuad(white, 0.25f, -1, 1, 0, -1)); // 18 or 19 columns
            drawQuad(*m_colorShader, makeQuad(white, 0.75f));               // hidden
            m_query->end();
            EXPECT_FALSE(m_query->dataAvailable());
            EXPECT_EQ(m_query->getOcclusionQueryData(), -1);
            drawQuad(*m_colorShader, makeQuad(white, 0.1f));
        });
        const int64_t samples = m_query->getOcclusionQueryData();
        EXPECT_TRUE(samples == 18 * 23 || samples == 19 * 23) << samples;
    }
}

TEST_F(QueryTest, SpansTargetsClearsAndUploads)
{
    const SmartRef<RenderTarget> inner = makeTarget(5, 3);
    draw([&] {
        bindDefaults();
        m_query->begin();
        drawQuad(*m_colorShader, makeQuad(white));
        renderer().pushRenderTarget(inner.get());
        drawQuad(*m_colorShader, makeQuad(white));
        renderer().clear(Renderer::ClearColor, white, 1, 0);
        makeTexture(1, 1, {0}); // copies close rendering
        drawQuad(*m_colorShader, makeQuad(white));
        renderer().popRenderTarget();
        m_query->end();
    });
    EXPECT_EQ(m_query->getOcclusionQueryData(), 37 * 23 + 2 * 5 * 3);
}

TEST_F(QueryTest, QueriesOverlapAndCrossFrames)
{
    const SmartRef<Query> other = createQuery();
    draw([&] {
        bindDefaults();
        m_query->begin();
        drawQuad(*m_colorShader, makeQuad(white));
        other->begin();
        drawQuad(*m_colorShader, makeQuad(white));
    });
    EXPECT_FALSE(other->dataAvailable());
    draw([&] {
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(white));
        m_query->end();
        drawQuad(*m_colorShader, makeQuad(white));
        other->end();
    });
    EXPECT_EQ(m_query->getOcclusionQueryData(), 3 * 37 * 23);
    EXPECT_EQ(other->getOcclusionQueryData(), 3 * 37 * 23);
}

TEST_F(QueryTest, NothingDrawnIsZeroAndMisuseIsHarmless)
{
    draw([&] {
        m_query->end(); // never begun
        m_query->begin();
        m_query->begin(); // starts anew
        m_query->end();
        SmartRef<Query> dying = createQuery();
        dying->begin();
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(white));
        dying = nullptr; // while it counts
        dying = createQuery();
        dying->begin();
        drawQuad(*m_colorShader, makeQuad(white));
        dying->end(); // and dies unanswered
    });
    EXPECT_EQ(m_query->getOcclusionQueryData(), 0);
}

TEST_F(QueryTest, AFrameMayHoldThousands)
{
    std::vector<SmartRef<Query>> queries(3000);
    draw([&] {
        bindDefaults();
        for (SmartRef<Query>& query : queries) {
            query = createQuery();
            query->begin();
            drawQuad(*m_colorShader, makeQuad(white));
            query->end();
        }
    });
    for (const SmartRef<Query>& query : queries)
        ASSERT_EQ(query->getOcclusionQueryData(), 37 * 23);
}

TEST_F(QueryTest, OneMaySpanThousandsOfTargets)
{
    const SmartRef<RenderTarget> inner = makeTarget(5, 3);
    constexpr int turns = 1500;
    draw([&] {
        bindDefaults();
        m_query->begin();
        for (int i = 0; i < turns; ++i) {
            renderer().pushRenderTarget(inner.get());
            drawQuad(*m_colorShader, makeQuad(white));
            renderer().popRenderTarget();
            drawQuad(*m_colorShader, makeQuad(white));
        }
        m_query->end();
    });
    EXPECT_EQ(m_query->getOcclusionQueryData(), turns * (37 * 23 + 5 * 3));
}

TEST_F(QueryTest, OneMaySpanThousandsOfOthers)
{
    std::vector<SmartRef<Query>> others(1500);
    draw([&] {
        bindDefaults();
        m_query->begin();
        for (SmartRef<Query>& query : others) {
            query = createQuery();
            query->begin();
        }
        drawQuad(*m_colorShader, makeQuad(white));
        for (const SmartRef<Query>& query : others)
            query->end();
        drawQuad(*m_colorShader, makeQuad(white));
        m_query->end();
    });
    EXPECT_EQ(m_query->getOcclusionQueryData(), 2 * 37 * 23);
    for (const SmartRef<Query>& query : others)
        ASSERT_EQ(query->getOcclusionQueryData(), 37 * 23);
}

TEST_F(QueryTest, TheTimeOfAFrameIsThatOfAllItsBatches)
{
    renderer().setTimed(true);
    const SmartRef<RenderTarget> large = makeTarget(512, 512);
    const auto measure = [&](int queries) {
        draw([&] {
            bindDefaults();
            renderer().pushRenderTarget(large.get());
            for (int i = 0; i < 100; ++i)
                drawQuad(*m_colorShader, makeQuad(white));
            for (int i = 0; i < queries; ++i) { // begins batch after batch
                m_query->begin();
                m_query->end();
            }
        });
        return renderer().getStats().gpuSecondsLastFrame;
    };
    measure(0); // makes the pipeline
    const double whole = measure(0);
    EXPECT_GT(measure(2000), whole / 4);
}

TEST_F(QueryTest, AnswersArriveWithoutWaitingWhenFramesRunFree)
{
    renderer().setOffline(false);
    int64_t samples = -1;
    for (int frame = 0; frame < 200 && samples < 0; ++frame) {
        renderer().beginFrame(nullptr);
        if (frame == 0) {
            bindDefaults();
            m_query->begin();
            drawQuad(*m_colorShader, makeQuad(white));
            m_query->end();
        }
        samples = m_query->getOcclusionQueryData();
        renderer().endFrame();
    }
    EXPECT_EQ(samples, 37 * 23);
}

} // namespace

} // namespace helvantine::test
