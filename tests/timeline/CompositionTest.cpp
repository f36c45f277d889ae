// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

namespace helvantine
{

using testplugin::addEffect;
using testplugin::RecordingEffect;
using testplugin::SumNode;
using testplugin::takeLog;

namespace
{

struct CompositionTest : ::testing::Test
{
    CompositionTest() : composition(new Composition(true, true)) {}

    Composition* addChild(const char* name, bool isFolder = false)
    {
        auto* child = new Composition(true, true);
        child->setName(name);
        child->setIsFolder(isFolder);
        composition->addComposition(child);
        return child;
    }

    std::string childNames() const
    {
        std::string names;
        for (const SmartRef<Composition>& child : composition->m_compositions)
            names += child->m_name + ' ';
        return names;
    }

    void tick(int frame)
    {
        FxUpdateContext context;
        context.frame = frame;
        context.time = static_cast<float>(frame) / 60.0f;
        composition->update(context);
    }

    testplugin::Runtime runtime;
    SmartRef<Composition> composition;
};

} // namespace

TEST_F(CompositionTest, ChildrenStandFoldersFirstNamesDescending)
{
    for (const char* name : {"a", "B", "ab"})
        addChild(name);
    addChild("alpha", true);
    addChild("z", true);
    EXPECT_EQ(childNames(), "z alpha ab a B ");
}

TEST_F(CompositionTest, RemovalGoesByIdAndClearsTheArgumentsParent)
{
    const SmartRef<Composition> child(addChild("child"));
    const SmartRef<Composition> twin(new Composition(true, true));
    twin->m_parent = child.get();
    composition->removeComposition(twin.get()); // a stranger
    EXPECT_EQ(twin->m_parent, child.get());

    twin->setId(child->m_id);
    composition->removeComposition(twin.get());
    EXPECT_EQ(childNames(), "");
    EXPECT_EQ(twin->m_parent, nullptr);
    EXPECT_EQ(child->m_parent, composition.get()) << "deliberately the argument's parent, not the entry's";
}

TEST_F(CompositionTest, ExtentLooksAtEndsAlone)
{
    EXPECT_EQ(composition->getStartFrame(), 0);
    EXPECT_EQ(composition->getEndFrame(), 0);
    RecordingEffect* effect = addEffect(*composition->m_rootEffect, "a", 10, 20);
    addEffect(*effect, "below", 0, 5000);
    EXPECT_EQ(composition->getStartFrame(), 0);
    EXPECT_EQ(composition->getEndFrame(), 20);
    addEffect(*composition->m_rootEffect, "before", -30, -20);
    EXPECT_EQ(composition->getStartFrame(), -20);
}

TEST_F(CompositionTest, SearchesHaveTheirReach)
{
    Composition* child = addChild("child");
    const RecordingEffect* own = addEffect(*composition->m_rootEffect, "own", 0, 1);
    const RecordingEffect* below = addEffect(*child->m_rootEffect, "below", 0, 1);
    auto* node = new SumNode;
    child->m_schematics->addNode(node);

    EXPECT_EQ(composition->findComposition(child->m_id), child);
    EXPECT_EQ(composition->findCompositionFromNode(node->m_id), child);
    EXPECT_EQ(composition->findObject(node->m_id), node);
    EXPECT_EQ(composition->findObject(below->m_id), below);
    EXPECT_EQ(composition->findObject(composition->m_camera->m_id), nullptr);
    EXPECT_EQ(composition->findProperty(own->m_float.m_id), &own->m_float);
    EXPECT_EQ(composition->findProperty(below->m_float.m_id), nullptr);
    EXPECT_EQ(child->findProperty(node->m_sum.m_id), &node->m_sum);
    EXPECT_EQ(composition->getAllNodes().size(), 1u);
    EXPECT_EQ(composition->getAllObjects().size(), 4u);

    const_cast<RecordingEffect*>(own)->setId(below->m_id);
    EXPECT_EQ(composition->findObject(below->m_id), below) << "children first";
}

TEST_F(CompositionTest, CloneCopiesTheTimelineAlone)
{
    addChild("child");
    composition->setName("main");
    composition->m_fov = 30.0f;
    composition->setFov(70.0f);
    composition->m_schematics->addNode(new SumNode);
    addEffect(*composition->m_rootEffect, "a", 0, 1);

    const SmartRef<Composition> copy(composition->clone());
    EXPECT_FALSE(copy->m_id == composition->m_id);
    EXPECT_EQ(copy->m_name, "main");
    EXPECT_TRUE(copy->m_compositions.empty());
    EXPECT_TRUE(copy->m_schematics->m_nodes.empty());
    EXPECT_EQ(copy->m_fov, 45.0f);
    EXPECT_EQ(copy->m_camera->getFov(), 70.0f);
    EXPECT_EQ(copy->m_rootEffect->m_children.size(), 1u);
}

TEST_F(CompositionTest, GraphRunsBeforeEffectsAndSeesCurvesOneFrameLater)
{
    RecordingEffect* effect = addEffect(*composition->m_rootEffect, "a", 0, 100);
    auto* node = new SumNode;
    composition->m_schematics->addNode(node);
    composition->m_schematics->addNode(effect->m_effectNode.get());
    effect->m_output.setDefault(0.0f);
    composition->m_schematics->addLink(new PropertyLink(&effect->m_output, &node->m_a));
    composition->m_schematics->addLink(new PropertyLink(&node->m_sum, &effect->m_float));
    effect->m_output.enableKeyframe(true);
    for (const float time : {0.0f, 1.0f}) {
        Key* key = effect->m_output.m_keyframe->createKey();
        key->time = time;
        key->values[0] = 60.0f * time; // the frame's number
        effect->m_output.m_keyframe->addKey(key, true);
    }

    tick(10);
    EXPECT_EQ(effect->m_float.m_value, 1.0f);
    EXPECT_FLOAT_EQ(node->m_a.m_value, 10.0f);
    tick(11);
    EXPECT_FLOAT_EQ(effect->m_float.m_value, 11.0f);
}

TEST_F(CompositionTest, StopReachesBelowEffectsThatDoNotRun)
{
    RecordingEffect* a = addEffect(*composition->m_rootEffect, "a", 0, 10);
    RecordingEffect* b = addEffect(*a, "b", 0, 10);
    addEffect(*b, "c", 0, 10);
    tick(1);
    b->setActiveState(0);
    takeLog();
    composition->stopActiveEffects();
    composition->stopActiveEffects();
    EXPECT_EQ(takeLog(), "a:stop c:stop");
}

} // namespace helvantine
