// SPDX-License-Identifier: MIT
// Documents of some megabytes that are made to cost as much as they can.
#include <gtest/gtest.h>

#include "ReadLimits.h"
#include "ScriptBuilder.h"
#include "plugin/Runtime.h"

#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/NodeCatalogue.h>

namespace helvantine
{

using testplugin::readWithinLimits;
using testplugin::ScriptBuilder;

namespace
{

struct HostileCostTest : ::testing::Test
{
    testplugin::Runtime runtime;
};

/// Of no object, and of no class.
UniqueId makeStrangeId(unsigned number)
{
    UniqueId id;
    id.data1 = number;
    id.data2 = 1;
    return id;
}

} // namespace

TEST_F(HostileCostTest, ManyValuesNameResourcesInALargeTree)
{
    constexpr unsigned folders = 60000, links = 60000;
    ScriptBuilder script;
    script.beginDocument(folders);
    for (unsigned i = 0; i < folders; ++i)
        script.addFolder(0);
    script.beginComposition(1);
    script.beginObject(TextureEffect::s_plugininfo.id, 1);
    script.addGroup("Attributes", 1);
    const UniqueId texture = script.addProperty("Texture", KindResource, uniqueIdToString(makeStrangeId(1)));
    script.endObject();
    script.addNodeOfEffect();
    script.endEffects();
    script.out().writeUInt(2);
    const UniqueId a = script.addNode(ResourceNode::s_plugininfo.id, "Resource", KindResource,
                                      uniqueIdToString(makeStrangeId(2)));
    const UniqueId b = script.addNode(ResourceNode::s_plugininfo.id, "Resource", KindResource,
                                      uniqueIdToString(makeStrangeId(3)));
    script.out().writeUInt(links);
    for (unsigned i = 0; i < links; ++i)
        script.addLink(i % 2 == 0 ? a : b, texture);
    EXPECT_EQ(readWithinLimits(script.endDocument()).failure, "");
}

TEST_F(HostileCostTest, ManyResourcesThatCantBeMadeLieDeep)
{
    constexpr unsigned depth = 440, resources = 60000;
    ScriptBuilder script;
    script.beginDocument(1);
    for (unsigned i = 0; i < depth; ++i)
        script.addFolder(i + 1 < depth ? 1 : resources);
    for (unsigned i = 0; i < resources; ++i) {
        script.out().writeBool(false);
        script.beginObject(makeStrangeId(i));
        script.endObject();
        script.addResourceFields();
        script.out().writeUInt(0);
    }
    script.beginComposition();
    script.endEffects();
    script.out().writeUInt(0);
    script.out().writeUInt(0);
    EXPECT_EQ(readWithinLimits(script.endDocument()).problems.size(), 256u);
}

TEST_F(HostileCostTest, TextSpreadsOverLinks)
{
    constexpr unsigned nodes = 300, toggles = 60000;
    for (const bool isChain : {false, true}) {
        ScriptBuilder script;
        script.beginGraph(nodes + 2);
        UniqueId sources[2], targets[nodes];
        for (UniqueId& source : sources)
            source = script.addNode(StringNode::s_plugininfo.id, "Input", KindString,
                                    std::string(100000, &source == sources ? 'x' : 'y'));
        for (UniqueId& target : targets)
            target = script.addNode(StringNode::s_plugininfo.id, "Input", KindString, "");
        script.out().writeUInt(nodes + toggles);
        for (unsigned i = 0; i < nodes; ++i)
            script.addLink(isChain ? targets[i] : targets[0], targets[(i + 1) % nodes]);
        for (unsigned i = 0; i < toggles; ++i)
            script.addLink(sources[i % 2], targets[0]);
        EXPECT_EQ(readWithinLimits(script.endDocument()).failure, "") << isChain;
    }
}

TEST_F(HostileCostTest, CountOfResourcesComesOverLinks)
{
    constexpr unsigned nodes = 300, toggles = 60000;
    ScriptBuilder script;
    script.beginGraph(nodes + 3);
    UniqueId sources[3], counts[nodes];
    for (UniqueId& source : sources)
        source =
            script.addNode(IntNode::s_plugininfo.id, "Input", KindInt, &source == sources ? "4096" : "0");
    for (UniqueId& count : counts) {
        script.beginNode(AnimatedResourceNode::s_plugininfo.id, 1);
        script.addGroup("Inputs", 1);
        count = script.addProperty("Resource Count", KindInt, "0");
        script.endNode();
        script.out().writeInt(1);
    }
    script.out().writeUInt(nodes + toggles);
    for (const UniqueId& count : counts)
        script.addLink(sources[2], count);
    for (unsigned i = 0; i < toggles; ++i)
        script.addLink(sources[i % 2], sources[2]);
    EXPECT_EQ(readWithinLimits(script.endDocument()).failure, "");
}

} // namespace helvantine
