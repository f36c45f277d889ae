// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

namespace helvantine
{

using testplugin::addEffect;
using testplugin::RecordingEffect;
using testplugin::takeLog;

namespace
{

/// A root layer that is played at 60 frames per second.
struct EffectWalk : ::testing::Test
{
    EffectWalk() : root(new Layer) { root->onInit(); }

    template <class Context>
    Context makeContext(int frame)
    {
        Context context;
        context.frame = frame;
        context.time = static_cast<float>(frame) / 60.0f;
        context.relativeFrame = -77;
        context.relativeTime = -7.5f;
        return context;
    }

    std::string tick(int frame)
    {
        auto context = makeContext<FxUpdateContext>(frame);
        root->update(context);
        EXPECT_TRUE(context.relativeFrame == -77 && context.relativeTime == -7.5f)
            << "the host's values come back";
        return takeLog();
    }

    std::string draw(int frame)
    {
        auto context = makeContext<FxRenderContext>(frame);
        root->render(context);
        EXPECT_TRUE(context.relativeFrame == -77 && context.relativeTime == -7.5f)
            << "the host's values come back";
        return takeLog();
    }

    testplugin::Runtime runtime;
    SmartRef<Layer> root;
};

} // namespace

TEST_F(EffectWalk, ChildRunsInItsHalfOpenWindowAndStopsOnce)
{
    const RecordingEffect* a = addEffect(*root, "a", 10, 20);

    EXPECT_EQ(tick(9), "");
    EXPECT_EQ(tick(10), "a:update@0 a:start@0");
    EXPECT_EQ(a->m_relativeTime, 10.0f / 60.0f - 10.0f / 60.0f);
    EXPECT_EQ(tick(19), "a:update@9");
    EXPECT_EQ(tick(20), "a:stop");
    EXPECT_EQ(tick(21), "");
    EXPECT_EQ(tick(12), "a:update@2 a:start@2");
}

TEST_F(EffectWalk, StartsThatAHookMovesCountFromTheNextChildOn)
{
    struct Mover : testplugin::RecordingEffect
    {
        void onUpdate(FxUpdateContext&) override { m_parent->setStart(4); }
    };
    auto* mover = new Mover;
    root->addObject(mover, -1);
    mover->onInit();
    mover->setName("mover");
    addEffect(*root, "b", 0, 20);

    EXPECT_EQ(tick(10), "mover:start@10 b:update@6 b:start@6");
}

TEST_F(EffectWalk, EditsBetweenTicksCountAtOnce)
{
    RecordingEffect* a = addEffect(*root, "a", 0, 10);
    RecordingEffect* b = addEffect(*a, "b", 5, 8);
    EXPECT_EQ(tick(2), "a:update@2 a:start@2");
    b->setStart(1);
    EXPECT_EQ(tick(2), "a:update@2 b:update@1 b:start@1");
    root->setStart(1);
    EXPECT_EQ(tick(2), "a:update@1 b:update@0");
    b->setEnd(1);
    EXPECT_EQ(tick(2), "a:update@1 b:stop");
    const SmartRef<Effect> held(b);
    a->deleteObject(b->m_id);
    b->setEnd(9);
    root->addObject(b, 0);
    EXPECT_EQ(tick(3), "b:update@1 b:start@1 a:update@2");
    EXPECT_EQ(draw(1), "a:pre@0 a:render@0 a:post@0");

    Layer other; // a second parent, which the child doesn't count from
    other.addObject(a, -1);
    a->setParent(root.get());
    a->stop();
    b->stop();
    takeLog();
    auto context = makeContext<FxUpdateContext>(4);
    other.update(context);
    EXPECT_EQ(takeLog(), "a:update@3 a:start@3");
    EXPECT_EQ(tick(90), "a:stop") << "who started it doesn't matter";
}

TEST_F(EffectWalk, WalksWithinAWalkLoseNobodysStop)
{
    struct Seeker : testplugin::RecordingEffect
    {
        void onUpdate(FxUpdateContext& context) override
        {
            if (context.frame != 10)
                return;
            FxUpdateContext later = context;
            later.frame = 30;
            m_parent->update(later);
        }
    };
    auto* seeker = new Seeker;
    root->addObject(seeker, -1);
    seeker->onInit();
    seeker->setName("seeker");
    addEffect(*root, "early", 0, 20);
    addEffect(*root, "late", 30, 40);

    EXPECT_EQ(tick(10),
              "seeker:start@30 late:update@0 late:start@0 early:update@10 early:start@10 late:stop");
    EXPECT_EQ(tick(30), "early:stop late:update@0 late:start@0");
}

/// Walks remember which children there are to visit: it must never show.
TEST_F(EffectWalk, VisitsWhatIsInItsWindowWhereverTheFrameGoes)
{
    constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
    std::mt19937 random(3);
    const auto chooseFrame = [&] {
        const std::int32_t near = static_cast<std::int32_t>(random() % 40);
        const std::int32_t bases[] = {0, 0, 0, 0, smallest, largest - 39};
        return bases[random() % 6] + near;
    };
    std::vector<RecordingEffect*> effects;
    for (int i = 0; i < 12; ++i) {
        const std::int32_t start = chooseFrame();
        effects.push_back(addEffect(*root, std::string(1, static_cast<char>('a' + i)).c_str(), start,
                                    addFrames(start, static_cast<std::int32_t>(random() % 20) - 2)));
    }
    effects[3]->setEnd(effects[3]->m_start + largest);
    std::vector<bool> running(effects.size());

    std::int32_t frame = 0;
    for (int step = 0; step < 4000; ++step) {
        frame = random() % 8 ? addFrames(frame, 1) : chooseFrame();
        if (random() % 32 == 0)
            effects[random() % effects.size()]->setStart(chooseFrame());
        const bool draws = random() % 2 == 0;
        std::string drawn, expected;
        for (std::size_t i = 0; i < effects.size(); ++i) {
            const RecordingEffect& effect = *effects[i];
            const bool isInside = effect.isInWindow(subtractFrames(frame, effect.m_start));
            const std::string at = "@" + std::to_string(subtractFrames(frame, effect.m_start)) + " ";
            if (isInside)
                expected += effect.m_name + ":update" + at;
            if (isInside != running[i])
                expected += effect.m_name + (isInside ? ":start" + at : ":stop ");
            if (isInside)
                drawn += effect.m_name + ":pre" + at + effect.m_name + ":render" + at + effect.m_name +
                         ":post" + at;
            running[i] = isInside;
        }
        if (draws) { // before the tick of that frame
            ASSERT_EQ(draw(frame) + (drawn.empty() ? "" : " "), drawn) << "at " << frame;
        }
        ASSERT_EQ(tick(frame) + (expected.empty() ? "" : " "), expected) << "at " << frame;
    }
}

TEST_F(EffectWalk, ChildrenMayTakeThemselvesOut)
{
    struct Leaver : testplugin::RecordingEffect
    {
        void onUpdate(FxUpdateContext& context) override
        {
            RecordingEffect::onUpdate(context);
            if (m_parent && context.relativeFrame == 3)
                m_parent->deleteObject(m_id);
        }
        void onStop() override
        {
            RecordingEffect::onStop();
            m_parent->deleteObject(m_id);
        }
        void onRender(FxRenderContext& context) override
        {
            RecordingEffect::onRender(context);
            m_parent->deleteObject(m_id);
        }
    };
    const auto add = [&](const char* name, int end) {
        auto* child = new Leaver;
        root->addObject(child, -1);
        child->onInit();
        child->setName(name);
        child->setEnd(end);
    };
    add("a", 9);
    add("b", 2);
    add("c", 9);
    add("d", 3);
    addEffect(*root, "e", 2, 9);

    EXPECT_EQ(tick(1), "a:update@1 a:start@1 b:update@1 b:start@1 c:update@1 c:start@1 d:update@1 d:start@1");
    EXPECT_EQ(tick(2), "a:update@2 b:stop d:update@2 e:update@0 e:start@0") << "the next one moves up";
    EXPECT_EQ(draw(2), "a:pre@2 a:render@2 a:post@2 d:pre@2 d:render@2 d:post@2");
    EXPECT_EQ(tick(3), "c:update@3");
    EXPECT_EQ(root->m_children.size(), 1u);
}

TEST_F(EffectWalk, EffectWithoutLengthNeverRuns)
{
    addEffect(*root, "a", 10, 10);
    addEffect(*root, "b", 10, 5);
    addEffect(*root, "c", std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    for (const int frame : {0, 7, 10, std::numeric_limits<int>::max()})
        EXPECT_EQ(tick(frame) + draw(frame), "");
}

TEST_F(EffectWalk, ParentThatLeavesStopsWhatRunsBelow)
{
    RecordingEffect* a = addEffect(*root, "a", 10, 20);
    RecordingEffect* b = addEffect(*a, "b", 5, 50);
    addEffect(*b, "c", 0, 50);
    RecordingEffect* d = addEffect(*b, "d", 40, 50);
    addEffect(*d, "e", 0, 1)->setActiveState(1);

    EXPECT_EQ(tick(14), "a:update@4 a:start@4");
    EXPECT_EQ(tick(15), "a:update@5 b:update@0 c:update@0 c:start@0 b:start@0");
    EXPECT_EQ(tick(20), "a:stop b:stop c:stop e:stop");

    b->setActiveState(1);
    EXPECT_EQ(tick(21), "") << "the walk starts at a running child";
}

TEST_F(EffectWalk, DisabledChildIsStartedAndStoppedAndNothingElse)
{
    RecordingEffect* a = addEffect(*root, "a", 0, 10);
    addEffect(*a, "b", 0, 10);
    a->setEnabled(false);
    a->m_float.enableKeyframe(true);
    Key* key = a->m_float.m_keyframe->createKey();
    key->values[0] = 3.0f;
    a->m_float.m_keyframe->addKey(key, true);

    EXPECT_EQ(tick(0), "a:start@0");
    EXPECT_EQ(a->m_float.m_value, 3.0f) << "curves are the parent's business";
    EXPECT_EQ(tick(1) + draw(1), "");
    EXPECT_EQ(tick(10), "a:stop");

    root->setEnabled(false);
    EXPECT_EQ(tick(0), "");
}

TEST_F(EffectWalk, CurvesCountFromTheChildsOwnStart)
{
    RecordingEffect* a = addEffect(*root, "a", 60, 600);
    RecordingEffect* b = addEffect(*a, "b", 60, 600);
    b->m_float.enableKeyframe(true);
    for (const float time : {0.0f, 10.0f}) {
        Key* key = b->m_float.m_keyframe->createKey();
        key->time = time;
        key->values[0] = time;
        b->m_float.m_keyframe->addKey(key, true);
    }
    tick(60);
    EXPECT_FALSE(b->m_float.m_hasValue);
    tick(150);
    EXPECT_FLOAT_EQ(b->m_float.m_value, 0.5f);
}

TEST_F(EffectWalk, RenderDrawsParentsAroundChildrenAndKeepsState)
{
    RecordingEffect* a = addEffect(*root, "a", 0, 10);
    addEffect(*a, "b", 2, 5);
    addEffect(*a, "c", 0, 9);

    const char* expected =
        "a:pre@3 a:render@3 b:pre@1 b:render@1 b:post@1 c:pre@3 c:render@3 c:post@3 a:post@3";
    EXPECT_EQ(draw(3), expected);
    EXPECT_EQ(draw(3), expected);
    EXPECT_EQ(a->m_activeState, 0);
    EXPECT_EQ(draw(10), "");
}

TEST_F(EffectWalk, CloneSharesNothing)
{
    RecordingEffect* a = addEffect(*root, "a", 3, 9);
    RecordingEffect* b = addEffect(*a, "b", 1, 2);
    a->m_inputs->m_viewFlagA = true;
    a->m_float.m_viewSize = 44;
    a->m_string = "text, with comma";
    b->m_color = Vec4{0.25f, 0.5f, 1.0f, 0.0f};
    b->m_color.enableKeyframe(true);
    b->setExpanded(false);
    tick(5);

    const SmartRef<Layer> copy(static_cast<Layer*>(root->clone()));
    ASSERT_EQ(copy->m_children.size(), 1u);
    const auto& a2 = static_cast<const RecordingEffect&>(*copy->m_children[0]);
    const auto& b2 = static_cast<const RecordingEffect&>(*a2.m_children.at(0));
    EXPECT_TRUE(a2.isOfType(&RecordingEffect::m_typeInfo));
    EXPECT_EQ(a2.m_parent, copy.get());
    EXPECT_EQ(copy->m_parent, nullptr);
    EXPECT_EQ(a2.m_name + std::to_string(a2.m_start) + std::to_string(a2.m_end), "a39");
    EXPECT_FALSE(a2.m_id == a->m_id);
    EXPECT_EQ(a2.m_activeState, 0);
    EXPECT_EQ(a2.m_effectNode->m_effect, &a2);
    EXPECT_TRUE(a2.m_inputs->m_viewFlagA);
    EXPECT_EQ(a2.m_float.m_viewSize, 44);
    EXPECT_EQ(a2.m_string.m_value, "text, with comma");
    EXPECT_EQ(b2.m_color.m_value, b->m_color.m_value);
    EXPECT_NE(b2.m_color.m_keyframe, nullptr);
    EXPECT_NE(b2.m_color.m_keyframe, b->m_color.m_keyframe);
    EXPECT_FALSE(b2.m_expanded);
}

TEST_F(EffectWalk, CloneLeavesOutWhatNobodyCanMake)
{
    auto* stranger = new Effect; // a base class: has an id, can't be created by it
    root->addObject(stranger, -1);
    addEffect(*root, "a", 0, 1);
    EXPECT_EQ(stranger->clone(), nullptr);
    const SmartRef<Effect> copy(root->clone());
    ASSERT_EQ(copy->m_children.size(), 1u);
    EXPECT_EQ(copy->m_children[0]->m_name, "a");
}

TEST_F(EffectWalk, NodeForgetsAnEffectThatDiesOrTakesAnother)
{
    RecordingEffect* a = addEffect(*root, "a", 0, 1);
    const SmartRef<EffectNode> former = a->m_effectNode;
    EXPECT_EQ(former->m_effect, a);
    a->onInit();
    EXPECT_EQ(former->m_effect, nullptr);
    const SmartRef<EffectNode> node = a->m_effectNode;
    EXPECT_EQ(node->m_effect, a);
    root->deleteObject(a->m_id);
    EXPECT_EQ(node->m_effect, nullptr);
}

} // namespace helvantine
