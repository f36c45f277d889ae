// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/core/Report.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace helvantine
{

using testplugin::RecordingEffect;
using testplugin::SumNode;
using testplugin::takeLog;
using testplugin::takeWords;
using testplugin::TextNode;

namespace
{

/// Does something once, when it is updated or stopped.
struct EditingEffect : RecordingEffect
{
    void onUpdate(FxUpdateContext& context) override
    {
        RecordingEffect::onUpdate(context);
        if (edit)
            std::exchange(edit, nullptr)();
    }
    void onStop() override
    {
        RecordingEffect::onStop();
        if (editAtStop)
            std::exchange(editAtStop, nullptr)();
    }

    std::function<void()> edit;
    std::function<void()> editAtStop;
};

struct CompositionEdit : ::testing::Test
{
    CompositionEdit() : composition(new Composition(true, true)), root(*composition->m_rootEffect)
    {
        composition->setName("Intro");
        takeProblems();
    }
    ~CompositionEdit() override { EXPECT_EQ(takeWords(), "") << "only what the test took is reported"; }

    RecordingEffect& add(Effect& parent, const char* name, int start = 0, int end = 100)
    {
        return parent.addEffect<RecordingEffect>(name, start, end);
    }

    std::string tick(int frame)
    {
        takeLog();
        FxUpdateContext context;
        context.frame = frame;
        composition->update(context);
        return takeLog();
    }

    testplugin::Runtime runtime;
    SmartRef<Composition> composition;
    Layer& root;
};

} // namespace

TEST_F(CompositionEdit, AddedEffectIsReadyAndItsParentsAlone)
{
    RecordingEffect& typed = add(root, "typed", 3, 7);
    Effect* byId = root.addEffect(RecordingEffect::s_plugininfo.id, "by id", 4, 8);
    Effect* byPath = root.addEffect("Test/Recording", "by path", 5, 9);

    int start = 3;
    for (const Effect* effect : {static_cast<const Effect*>(&typed), static_cast<const Effect*>(byId),
                                 static_cast<const Effect*>(byPath)})
    {
        ASSERT_TRUE(effect && effect->isOfType(&RecordingEffect::m_typeInfo));
        EXPECT_TRUE(effect->m_effectNode) << effect->m_name;
        EXPECT_EQ(effect->m_parent, &root);
        EXPECT_EQ(effect->m_start, start++);
        EXPECT_EQ(effect->getLength(), 4);
        EXPECT_EQ(effect->getRefCount(), 1);
    }
    EXPECT_EQ(byPath->m_name, "by path");
}

TEST_F(CompositionEdit, UnknownClassesAreReportedAndAddNothing)
{
    EXPECT_EQ(root.addEffect("Test/Recordign", "a", 0, 1), nullptr);
    EXPECT_EQ(takeWords(), "plugin: no library offers 'Test/Recordign'; nearest: 'Test/Recording'");
    EXPECT_EQ(root.addEffect("Test/Sum", "a", 0, 1), nullptr) << "a node";
    EXPECT_EQ(takeWords(), "plugin: no library offers 'Test/Sum'");
    EXPECT_EQ(root.addEffect(UniqueId(), "a", 0, 1), nullptr);
    EXPECT_EQ(takeWords(), "plugin: class 00000000-0000-0000-0000-000000000000 is offered by no library");
    EXPECT_EQ(root.addEffect(SumNode::s_plugininfo.id, "a", 0, 1), nullptr);
    EXPECT_EQ(takeWords(), "plugin: class A0F1C6E2-0B3D-4C7E-9A51-7C0D3E5B1A02 is no Effect");
    EXPECT_TRUE(root.m_children.empty());

    const auto node = create<SchematicsNode>("Test/Sum");
    ASSERT_TRUE(castTo<SumNode>(node));
    EXPECT_EQ(node->getRefCount(), 1);
}

TEST_F(CompositionEdit, EffectThatWasNeverInitialisedIsReportedOnceWhenItRuns)
{
    root.addObject(new RecordingEffect, -1);
    tick(200);
    EXPECT_EQ(takeWords(), "") << "outside its window";
    tick(0);
    EXPECT_EQ(takeWords(),
              "effect: RecordingEffect runs uninitialised: onInit wasn't called, or an override of it "
              "doesn't call Effect::onInit");
    tick(200);
    tick(0);
    EXPECT_EQ(takeWords(), "");
}

TEST_F(CompositionEdit, ReorderedEffectsKeepRunning)
{
    RecordingEffect& a = add(root, "a");
    RecordingEffect& b = add(root, "b");
    add(root, "c");
    tick(0);

    EXPECT_TRUE(a.moveTo(root, -1));
    EXPECT_EQ(tick(1), "b:update@1 c:update@1 a:update@1");
    EXPECT_TRUE(a.moveTo(root, 1));
    EXPECT_EQ(tick(2), "b:update@2 a:update@2 c:update@2");
    EXPECT_TRUE(b.moveTo(root, 99));
    EXPECT_EQ(tick(3), "a:update@3 c:update@3 b:update@3");
    EXPECT_TRUE(b.moveTo(root, -77));
    EXPECT_TRUE(b.moveTo(root, 0));
    EXPECT_EQ(tick(4), "b:update@4 a:update@4 c:update@4");
    EXPECT_EQ(a.getRefCount(), 1);
}

TEST_F(CompositionEdit, EffectThatMovesToAnotherParentStopsAndStartsThere)
{
    RecordingEffect& near = add(root, "near");
    RecordingEffect& far = add(root, "far", 50, 100);
    RecordingEffect& child = add(near, "child");
    add(child, "grandchild");
    tick(0);

    takeLog();
    EXPECT_TRUE(child.moveTo(far, -1));
    EXPECT_EQ(takeLog(), "child:stop grandchild:stop");
    EXPECT_EQ(tick(1), "near:update@1");
    EXPECT_EQ(tick(50), "near:update@50 far:update@0 child:update@0 grandchild:update@0 grandchild:start@0 "
                        "child:start@0 far:start@0");
}

TEST_F(CompositionEdit, EffectMovesNeitherBelowItselfNorOutOfItsTree)
{
    RecordingEffect& a = add(root, "a");
    RecordingEffect& child = add(a, "child");
    const SmartRef<Composition> other(new Composition(true, true));

    EXPECT_FALSE(a.moveTo(a, 0));
    EXPECT_FALSE(a.moveTo(child, 0));
    EXPECT_FALSE(root.moveTo(a, 0));
    EXPECT_FALSE(a.moveTo(*other->m_rootEffect, 0));
    EXPECT_EQ(takeWords(),
              "effect: RecordingEffect 'a' isn't moved to RecordingEffect 'a': that is or lies below the "
              "effect itself\n"
              "effect: RecordingEffect 'a' isn't moved to RecordingEffect 'child': that is or lies below the "
              "effect itself\n"
              "effect: Layer isn't moved to RecordingEffect 'a': it is the root of its tree\n"
              "effect: RecordingEffect 'a' isn't moved to Layer: that is in another tree; clone the effect");
    EXPECT_EQ(a.m_parent, &root);
    EXPECT_EQ(root.m_children.size(), 1u);
}

TEST_F(CompositionEdit, HooksMayMoveAndRemoveWhatIsWalked)
{
    auto& a = root.addEffect<EditingEffect>("a", 0, 100);
    RecordingEffect& b = add(root, "b");
    auto& c = root.addEffect<EditingEffect>("c", 0, 100);
    add(root, "d");
    tick(0);

    a.edit = [&] { composition->removeEffect(&b); };
    EXPECT_EQ(tick(1), "a:update@1 b:stop c:update@1 d:update@1");
    c.edit = [&] { c.moveTo(root, 0); };
    tick(2);
    EXPECT_EQ(tick(3), "c:update@3 a:update@3 d:update@3");
    a.edit = [&] { composition->removeEffect(&a); };
    EXPECT_EQ(tick(4).find("a:update@4 a:stop"), std::string("c:update@4 ").size());
    EXPECT_EQ(tick(5), "c:update@5 d:update@5");
    c.editAtStop = [&] { composition->removeEffect(&c); };
    EXPECT_TRUE(composition->removeEffect(&c));
    EXPECT_EQ(tick(6), "d:update@6");
}

TEST_F(CompositionEdit, LinksAreMadeByNamesAndBringEffectsIntoTheGraph)
{
    RecordingEffect& a = add(root, "a");
    RecordingEffect& b = add(root, "b");
    auto& sum = composition->addNode<SumNode>("sum");

    EXPECT_TRUE(composition->addLink(a, "Float", sum, "A"));
    EXPECT_TRUE(composition->addLink(sum, "Outputs.Sum", b, "Float"));
    EXPECT_TRUE(composition->addLink(a, "Int", b, "Enum"));
    a.setProperty("Float", 4);
    tick(0); // which puts the nodes in their order
    EXPECT_EQ(composition->m_schematics->m_sortedNodes.size(), 3u);

    EXPECT_EQ(b.m_float.m_value, 5.0f);
    EXPECT_EQ(composition->m_schematics->m_nodes.size(), 3u) << "each once";
    EXPECT_EQ(sum.m_name, "sum");
}

TEST_F(CompositionEdit, LinksThatMayNotBeAreReported)
{
    RecordingEffect& a = add(root, "a");
    RecordingEffect& b = add(root, "b");
    ASSERT_TRUE(composition->addLink(&a.m_float, &b.m_float));

    EXPECT_FALSE(composition->addLink(&a.m_output, &b.m_float));
    EXPECT_FALSE(composition->addLink(&a.m_color, &b.m_rotation));
    EXPECT_FALSE(composition->addLink(&a.m_color, &a.m_color));
    EXPECT_FALSE(composition->addLink(nullptr, &a.m_color));
    EXPECT_FALSE(composition->addLink(a, "Floot", b, "Bool"));
    EXPECT_EQ(
        takeWords(),
        "composition: Intro: no link from 'Output' to 'Float' (float to float): the target has a link "
        "already\n"
        "composition: Intro: no link from 'Color' to 'Rotation' (colour to rotation): their kinds don't fit\n"
        "composition: Intro: no link from 'Color' to 'Color' (colour to colour): both are the same property\n"
        "composition: Intro: no link from null to 'Color': one of the two is null\n"
        "property: RecordingEffect 'a' has no property 'Floot'; nearest: 'Float'");
    EXPECT_EQ(composition->m_schematics->m_links.size(), 1u);
    EXPECT_TRUE(composition->m_schematics->m_nodes.empty())
        << "a link that fails brings no effect into the graph";
}

TEST_F(CompositionEdit, RemovedEffectTakesLinksAndNodesOfItsTreeAlong)
{
    RecordingEffect& kept = add(root, "kept");
    RecordingEffect& removed = add(root, "removed");
    RecordingEffect& child = add(removed, "child");
    auto& sum = composition->addNode<SumNode>("sum");
    composition->addLink(kept, "Float", removed, "Float");
    composition->addLink(child, "Color", kept, "Color");
    composition->addLink(child, "String", kept, "String");
    composition->addLink(removed, "Float", sum, "A");
    composition->addLink(kept, "Output", sum, "B");
    child.setProperty("String", "text");
    child.setProperty("Color", {1, 2, 3, 4});
    tick(0);
    takeLog();

    EXPECT_TRUE(composition->removeEffect(&removed));

    EXPECT_EQ(takeLog(), "removed:stop child:stop");
    const Schematics& graph = *composition->m_schematics;
    ASSERT_EQ(graph.m_links.size(), 1u);
    EXPECT_EQ(graph.m_links[0]->m_source, &kept.m_output);
    EXPECT_EQ(graph.m_nodes.size(), 2u);
    EXPECT_EQ(graph.m_sortedNodes.size(), 2u);
    EXPECT_EQ(graph.m_nodeMap.size(), 2u);
    EXPECT_EQ(kept.m_string.m_value, "") << "unplugged, a text goes empty";
    EXPECT_EQ(kept.m_color.m_value, Vec4(1, 2, 3, 4)) << "and a number stays";
    EXPECT_EQ(root.m_children.size(), 1u);
    kept.setProperty("Float", 3);
    EXPECT_EQ(tick(1), "kept:update@1");
}

TEST_F(CompositionEdit, RemovedNodeTakesItsLinksAlongAndThatOfAnEffectTheEffects)
{
    RecordingEffect& effect = add(root, "effect");
    auto& sum = composition->addNode<SumNode>("sum");
    auto& text = composition->addNode<TextNode>("text");
    composition->addLink(effect, "Float", sum, "A");
    composition->addLink(sum, "Sum", effect, "Output");
    composition->addLink(effect, "String", text, "Text");

    EXPECT_TRUE(composition->removeNode(&sum));
    EXPECT_EQ(composition->m_schematics->m_links.size(), 1u);
    EXPECT_TRUE(composition->removeNode(effect.m_effectNode.get()));
    EXPECT_TRUE(composition->m_schematics->m_links.empty());
    ASSERT_EQ(composition->m_schematics->m_nodes.size(), 1u);
    EXPECT_EQ(composition->m_schematics->m_nodes[0].get(), &text);
    EXPECT_EQ(effect.m_parent, &root) << "stays in the timeline";
}

TEST_F(CompositionEdit, StrangersAreNotRemoved)
{
    const SmartRef<RecordingEffect> stranger(new RecordingEffect);
    stranger->setName("stranger");
    const SmartRef<SumNode> node(new SumNode);

    EXPECT_FALSE(composition->removeEffect(stranger.get()));
    EXPECT_FALSE(composition->removeEffect(nullptr));
    EXPECT_FALSE(composition->removeEffect(&root));
    EXPECT_FALSE(composition->removeNode(node.get()));
    EXPECT_FALSE(composition->removeNode(nullptr));
    EXPECT_EQ(takeWords(),
              "composition: Intro: RecordingEffect 'stranger' isn't removed: it isn't in the timeline\n"
              "composition: Intro: null isn't removed: it isn't in the timeline\n"
              "composition: Intro: Layer isn't removed: it is the root\n"
              "composition: Intro: SumNode isn't removed: it isn't in the graph\n"
              "composition: Intro: null isn't removed: it isn't in the graph");
}

} // namespace helvantine
