// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Layer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

namespace helvantine
{

using testplugin::addEffect;
using testplugin::RecordingEffect;
using testplugin::SumNode;
using testplugin::TextNode;

namespace
{

struct GraphTest : ::testing::Test
{
    GraphTest() : root(new Layer) { root->onInit(); }
    ~GraphTest() override { graph.reset(); }

    template <class Node>
    Node* add(Node* node)
    {
        graph->addNode(node);
        return node;
    }

    void link(PropertyBase& source, PropertyBase& target)
    {
        graph->addLink(new PropertyLink(&source, &target));
    }

    void tick()
    {
        FxUpdateContext context;
        graph->update(context);
    }

    testplugin::Runtime runtime;
    SmartRef<Layer> root;
    std::unique_ptr<Schematics> graph = std::make_unique<Schematics>();
};

/// Does something to its graph while that runs.
struct EditingNode : SumNode
{
    void update(FxUpdateContext& context) override
    {
        SumNode::update(context);
        if (edit)
            std::exchange(edit, nullptr)();
    }

    std::function<void()> edit;
};

} // namespace

TEST_F(GraphTest, KindsDecideWhichLinksMayBe)
{
    RecordingEffect* a = addEffect(*root, "a", 0, 1);
    RecordingEffect* b = addEffect(*root, "b", 0, 1);
    struct Case
    {
        PropertyBase& source;
        PropertyBase& target;
        bool allowed;
    };
    const Case cases[] = {
        {a->m_float, a->m_float, false},     {a->m_float, b->m_float, true},
        {a->m_float, a->m_output, true},     {a->m_float, b->m_int, false},
        {a->m_int, b->m_enum, true},         {a->m_enum, b->m_int, true},
        {a->m_int, b->m_float, false},       {a->m_vec4, b->m_color, true},
        {a->m_color, b->m_vec4, true},       {a->m_color, b->m_rotation, false},
        {a->m_rotation, b->m_vec4, false},   {a->m_rotation, b->m_rotation, true},
        {a->m_string, b->m_resource, false}, {a->m_resource, b->m_resource, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(graph->canAddLink(&c.source, &c.target), c.allowed)
            << c.source.m_name << " to " << c.target.m_name;
    }
    link(a->m_float, b->m_float);
    EXPECT_FALSE(graph->canAddLink(&a->m_float, &b->m_float)) << "one link for a target";
    EXPECT_FALSE(graph->canAddLink(&a->m_output, &b->m_float));
    EXPECT_TRUE(graph->canAddLink(&b->m_float, &a->m_float)) << "rings are allowed";
}

TEST_F(GraphTest, LinksCopyAtOnceAndTextGoesEmptyWithThem)
{
    auto* a = add(new TextNode);
    auto* b = add(new TextNode);
    auto* c = add(new TextNode);
    auto* sum = add(new SumNode);
    auto* other = add(new SumNode);
    a->m_text = "hello";
    link(a->m_text, b->m_text);
    link(b->m_text, c->m_text);
    other->m_a = 4.0f;
    link(other->m_a, sum->m_a);
    EXPECT_EQ(c->m_text.m_value, "hello");

    graph->removeLink(&a->m_text, &c->m_text); // none there
    graph->removeLink(&other->m_a, &sum->m_a);
    EXPECT_EQ(sum->m_a.m_value, 4.0f) << "numbers keep what came last";
    graph->removeLinksTo(&b->m_text);
    EXPECT_EQ(b->m_text.m_value, "");
    EXPECT_EQ(c->m_text.m_value, "");
    EXPECT_TRUE(graph->m_links.empty());
    a->m_text = "again";
    EXPECT_EQ(b->m_text.m_value, "");
}

TEST_F(GraphTest, OneTickCarriesAValueThroughAnyAcyclicGraph)
{
    std::mt19937 random(1);
    for (int round = 0; round < 50; ++round) {
        graph = std::make_unique<Schematics>();
        const std::size_t count = 1 + random() % 40;
        std::vector<SumNode*> nodes; // a producer stands before its consumers
        for (std::size_t i = 0; i < count; ++i)
            nodes.push_back(new SumNode);
        std::vector<float> expected(count, 1.0f);
        std::vector<std::pair<FloatProperty*, FloatProperty*>> links;
        for (std::size_t i = 1; i < count; ++i) {
            for (FloatProperty* input : {&nodes[i]->m_a, &nodes[i]->m_b}) {
                if (random() % 3 == 0)
                    continue;
                const std::size_t producer = i - 1 - random() % std::min<std::size_t>(i, 3);
                expected[i] += expected[producer];
                links.emplace_back(&nodes[producer]->m_sum, input);
            }
        }
        // Nodes and links come in any order, some links before some nodes.
        std::vector<std::function<void()>> steps;
        for (SumNode* node : nodes)
            steps.push_back([this, node] { graph->addNode(node); });
        for (const auto& [source, target] : links)
            steps.push_back([this, s = source, t = target] { link(*s, *t); });
        std::shuffle(steps.begin(), steps.end(), random);
        for (const auto& step : steps)
            step();

        tick();

        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_EQ(nodes[i]->m_sum.m_value, expected[i]) << "round " << round << ", node " << i;
            EXPECT_EQ(nodes[i]->m_updates, 1);
        }
    }
}

TEST_F(GraphTest, NodesWaitForWhatComesThroughEffects)
{
    RecordingEffect* effect = addEffect(*root, "a", 0, 1);
    auto* last = new SumNode;
    auto* first = new SumNode;
    for (SchematicsNode* node :
         {static_cast<SchematicsNode*>(last), static_cast<SchematicsNode*>(effect->m_effectNode.get()),
          static_cast<SchematicsNode*>(first)})
        graph->addNode(node);
    link(effect->m_float, last->m_a);
    link(first->m_sum, effect->m_float);

    tick();
    EXPECT_EQ(last->m_sum.m_value, 2.0f);
    EXPECT_EQ(graph->m_sortedNodes.size(), 3u);
    effect->m_effectNode->setEffect(nullptr);
    graph->moveNodeToBack(last->m_id);
    graph->removeLinksTo(&first->m_sum);
    graph->removeNode(first);
    EXPECT_EQ(graph->m_sortedNodes.size(), 2u) << "a node without effect is a node all the same";
    effect->m_effectNode->setEffect(effect);
}

TEST_F(GraphTest, RingsRunEachNodeOnce)
{
    std::vector<SumNode*> nodes;
    for (int i = 0; i < 3; ++i)
        nodes.push_back(add(new SumNode));
    for (int i = 0; i < 3; ++i)
        link(nodes[static_cast<std::size_t>(i)]->m_sum, nodes[static_cast<std::size_t>((i + 1) % 3)]->m_a);
    link(nodes[0]->m_sum, nodes[0]->m_b);
    tick();
    for (const SumNode* node : nodes)
        EXPECT_EQ(node->m_updates, 1);
}

TEST_F(GraphTest, LongChainsAreSortedWithoutRecursion)
{
    graph->m_suspended = true;
    std::vector<SumNode*> nodes;
    for (int i = 0; i < 20000; ++i)
        nodes.push_back(add(new SumNode));
    for (std::size_t i = 0; i + 1 < nodes.size(); ++i)
        link(nodes[i + 1]->m_sum, nodes[i]->m_a);
    graph->m_suspended = false;
    graph->removeLinksTo(&nodes[0]->m_b); // nothing to remove, yet it rebuilds
    tick();
    EXPECT_EQ(nodes[0]->m_sum.m_value, 20000.0f);
}

TEST_F(GraphTest, NodesAreMovedAndRemovedById)
{
    auto* a = add(new SumNode);
    auto* b = add(new SumNode);
    const auto order = graph->m_sortedNodes;
    graph->moveNodeToBack(a->m_id);
    EXPECT_EQ(graph->m_nodes[0].get(), b);
    EXPECT_EQ(graph->m_nodes[1].get(), a);
    EXPECT_TRUE(graph->m_sortedNodes == order);

    graph->moveNodeToBack(generateUniqueId());
    ASSERT_EQ(graph->m_nodes.size(), 3u);
    EXPECT_EQ(graph->m_nodes[2].get(), nullptr) << "deliberate";
    add(new SumNode);
    tick();
    EXPECT_EQ(graph->findProperty(generateUniqueId()), nullptr);

    const auto stranger = std::make_unique<SumNode>();
    graph->removeNode(stranger.get());
    EXPECT_EQ(graph->m_nodes.size(), 4u);
    EXPECT_EQ(stranger->getRefCount(), 0) << "still its owner's";
}

TEST_F(GraphTest, NodesMayChangeTheGraphWhileItRuns)
{
    auto* editor = add(new EditingNode);
    auto* consumer = add(new SumNode);
    link(editor->m_sum, consumer->m_a);
    SumNode* added = nullptr;
    editor->edit = [&] {
        graph->removeLinksTo(&consumer->m_a);
        graph->removeNode(editor);
        added = add(new SumNode);
    };
    tick();
    EXPECT_EQ(consumer->m_updates, 1);
    EXPECT_EQ(added->m_updates, 0);
    tick();
    EXPECT_EQ(added->m_updates, 1);
    EXPECT_EQ(graph->m_sortedNodes.size(), 2u);
}

TEST_F(GraphTest, LinksEndWithThePropertiesAtTheirEnds)
{
    RecordingEffect* first = addEffect(*root, "first", 0, 1);
    RecordingEffect* second = addEffect(*root, "second", 0, 1);
    RecordingEffect* third = addEffect(*root, "third", 0, 1);
    link(first->m_float, second->m_float);
    link(second->m_float, third->m_float);
    link(second->m_string, third->m_string);
    link(first->m_int, third->m_int);
    const SmartRef<PropertyLink> held = graph->m_links[0];
    auto loose = std::make_unique<PropertyLink>(&third->m_color, &second->m_color);

    root->deleteObject(second->m_id);

    ASSERT_EQ(graph->m_links.size(), 1u);
    EXPECT_EQ(graph->m_links[0]->m_source, &first->m_int);
    EXPECT_TRUE(!held->m_source && !held->m_target);
    EXPECT_TRUE(!loose->m_source && !loose->m_target);
    first->m_float = 5.0f;
    third->m_color = Vec4(1, 2, 3, 4);
    held->onPropertyChanged(&first->m_float); // by hand
    graph->addLink(held.get());
    EXPECT_EQ(graph->m_links.size(), 1u) << "what leads nowhere isn't added";
    EXPECT_TRUE(third->m_listeners.empty());
    EXPECT_EQ(first->m_listeners.size(), 1u);
    tick();
}

TEST_F(GraphTest, LinksEndWithAPropertyWhileItsChangeIsTold)
{
    struct Killer final : PropertyListener
    {
        void onPropertyChanged(PropertyBase*) override { victim.reset(); }
        std::unique_ptr<FloatProperty> victim;
    } killer;
    RecordingEffect* effect = addEffect(*root, "effect", 0, 1);
    auto* sum = add(new SumNode);
    killer.victim = std::make_unique<FloatProperty>(sum, KindFloat, "Victim");
    effect->addListener(effect->m_float.m_id, &killer);
    link(effect->m_float, *killer.victim);
    link(effect->m_float, sum->m_a);

    effect->m_float = 3.0f;

    EXPECT_EQ(sum->m_a.m_value, 3.0f) << "those behind it are told";
    EXPECT_EQ(graph->m_links.size(), 1u);
    effect->removeListener(&killer);
    EXPECT_EQ(effect->m_listeners.at(effect->m_float.m_id).size(), 1u);
}

TEST_F(GraphTest, EndsOfAFanGoInTimeProportionalToIt)
{
    RecordingEffect* hub = addEffect(*root, "hub", 0, 1);
    auto context = std::make_unique<PropertyContext>();
    std::vector<std::unique_ptr<FloatProperty>> targets;
    std::vector<SmartRef<PropertyLink>> links;
    for (int i = 0; i < 200000; ++i) {
        targets.push_back(std::make_unique<FloatProperty>(context.get(), KindFloat, "Target"));
        links.emplace_back(new PropertyLink(&hub->m_float, targets.back().get()));
    }
    hub->m_float = 2.0f;
    EXPECT_EQ(targets.back()->m_value, 2.0f);
    targets.clear();
    EXPECT_TRUE(hub->m_listeners.empty());
    EXPECT_EQ(links.front()->m_source, nullptr);
}

TEST_F(GraphTest, NodeCloneCarriesInputsUnderAFreshId)
{
    SmartRef<SumNode> node(new SumNode);
    node->setName("sum");
    node->setPosition({3, 4});
    node->setEnabled(false);
    node->setStart(7);
    node->m_a = 2.5f;
    node->m_sum = 9.0f;
    const SmartRef<SumNode> copy(static_cast<SumNode*>(node->clone()));
    EXPECT_FALSE(copy->m_id == node->m_id);
    EXPECT_EQ(copy->m_name, "sum");
    EXPECT_TRUE(copy->m_position == Vec2(3, 4));
    EXPECT_FALSE(copy->m_enabled);
    EXPECT_EQ(copy->m_start, 0);
    EXPECT_EQ(copy->m_a.m_value, 2.5f);
    EXPECT_EQ(copy->m_sum.m_value, 0.0f);
    EXPECT_FALSE(copy->hasText());
}

} // namespace helvantine
