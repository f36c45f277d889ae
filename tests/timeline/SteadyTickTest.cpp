// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/testsupport/AllocationCount.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

namespace helvantine
{

namespace
{

/// An effect with an animated value, which it hands on.
struct MovingLayer : Layer
{
    MovingLayer()
    {
        addProperty(&m_value);
        m_value.enableKeyframe(true);
        for (const float time : {0.0f, 10.0f}) {
            Key* key = m_value.m_keyframe->createKey();
            key->time = time;
            key->values[0] = time;
            m_value.m_keyframe->addKey(key, true);
        }
    }

    FloatProperty m_value{this, KindFloat, "Value"};
};

} // namespace

TEST(SteadyTick, AllocatesNothing)
{
    testplugin::Runtime runtime;
    const SmartRef<Composition> composition(new Composition(true, true));
    Schematics& graph = *composition->m_schematics;
    testplugin::SumNode* last = nullptr;
    for (int i = 0; i < 20; ++i) {
        auto* effect = new MovingLayer;
        composition->m_rootEffect->addObject(effect, -1);
        effect->onInit();
        effect->setEnd(600);
        auto* node = new testplugin::SumNode;
        graph.addNode(effect->m_effectNode.get());
        graph.addNode(node);
        graph.addLink(new PropertyLink(&effect->m_value, &node->m_a));
        if (last)
            graph.addLink(new PropertyLink(&last->m_sum, &node->m_b));
        last = node;
    }
    FxUpdateContext update;
    FxRenderContext render;
    const auto play = [&](int frame) {
        update.frame = render.frame = frame;
        update.time = render.time = static_cast<float>(frame) / 60.0f;
        composition->update(update);
        composition->m_rootEffect->render(render);
    };
    play(0);

    const std::size_t before = test::countAllocations();
    for (int frame = 1; frame < 100; ++frame)
        play(frame);
    EXPECT_EQ(test::countAllocations() - before, 0u);
    EXPECT_NEAR(last->m_sum.m_value, 20.0f + 20.0f * 98.0f / 60.0f, 1e-3f) << "something has moved";
}

} // namespace helvantine
