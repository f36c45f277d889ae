// SPDX-License-Identifier: MIT
// Documents of some megabytes that are made to cost as much as they can.
#include <gtest/gtest.h>

#include "ReadLimits.h"
#include "ScriptBuilder.h"
#include "plugin/Runtime.h"

#include <helvantine/effects2d/TextureEffect.h>
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

} // namespace helvantine
