// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "SampleComposition.h"

#include <helvantine/core/RotationKeyframe.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>

namespace helvantine
{

using testplugin::bytesOf;
using testplugin::patch;
using testplugin::readRecord;
using testplugin::RecordingEffect;
using testplugin::SampleComposition;
using testplugin::SumNode;
using testplugin::takeLog;
using testplugin::TextNode;
using testplugin::writeRecord;

namespace
{

struct ScriptTest : ::testing::Test
{
    testplugin::Runtime runtime;
    SampleComposition sample;
};

struct Progress final : FxSerializerListener
{
    void onProgress(unsigned done, unsigned total) override
    {
        EXPECT_EQ(done, ++calls);
        EXPECT_EQ(total, 0u);
    }

    unsigned calls = 0;
};

/// A stream of values put together by hand.
struct HandWritten
{
    HandWritten() { out.attach(&buffer); }
    std::string take() const { return {reinterpret_cast<const char*>(buffer.getData()), buffer.getSize()}; }

    MemoryBuffer buffer{4096, 4096};
    OutStream out;
};

} // namespace

TEST_F(ScriptTest, WhatIsReadIsWrittenByteForByte)
{
    unsigned ticks = 0;
    const std::string bytes = writeRecord(*sample.composition, &ticks);
    Progress progress;
    const SmartRef<Composition> copy(new Composition(true, true));
    ASSERT_EQ(readRecord(*copy, bytes, g_formatVersion, &progress), "");

    EXPECT_TRUE(writeRecord(*copy) == bytes);
    EXPECT_EQ(progress.calls, ticks);
    EXPECT_EQ(takeLog(), "inner:loaded outer:loaded other:loaded");
    const auto* outer = static_cast<RecordingEffect*>(copy->findObject(sample.outer->m_id));
    ASSERT_NE(outer, nullptr);
    EXPECT_EQ(outer->m_children[0]->m_parent, outer);
    EXPECT_EQ(outer->m_effectNode->m_effect, outer);
    EXPECT_TRUE(outer->m_effectNode->m_position == Vec2(11, -12));
    EXPECT_EQ(outer->m_enum.m_value, 7) << "beyond its labels, kept as the number";
    EXPECT_EQ(outer->m_vec3.m_viewSize, 99);
    EXPECT_EQ(outer->m_float.m_keyframe->getKeys().size(), 4u);
    EXPECT_EQ(outer->m_float.m_keyframe->getKeys()[1]->tag, 17);
    EXPECT_NE(dynamic_cast<RotationKeyframe*>(outer->m_rotation.m_keyframe.get()), nullptr);
    EXPECT_EQ(copy->m_camera->getFov(), 33.0f);
}

TEST_F(ScriptTest, LoadedGraphRuns)
{
    const SmartRef<Composition> copy(new Composition(true, true));
    readRecord(*copy, writeRecord(*sample.composition));
    static_cast<SumNode*>(copy->findObject(sample.producer->m_id))->m_a = 40.0f;
    FxUpdateContext context;
    context.frame = 1000;
    copy->update(context);
    const auto* outer = static_cast<RecordingEffect*>(copy->findObject(sample.outer->m_id));
    EXPECT_EQ(outer->m_output.m_value, 42.0f) << "through two nodes in one tick";
}

TEST_F(ScriptTest, RecordsStandInTheirOrder)
{
    TextNode node;
    node.setName("node");
    node.setEnabled(false);
    node.setStart(-3);
    node.setPosition({1.5f, 2.5f});
    node.m_text = "value";
    node.m_text.m_viewFlag = true;
    node.m_text.setKeyframe(new Keyframe(1)); // nothing evaluates it here, but it is kept
    Key* key = node.m_text.m_keyframe->createKey();
    *key = {1, 2, 3, 4, 5, 6, 7, {8, 9, 10, 11}, {12, 13, 14, 15}, 16, {17}};
    node.m_text.m_keyframe->addKey(key, true);
    node.m_text.m_keyframe->setPreOOR(KeyframeOOR::Linear);

    HandWritten expected;
    OutStream& out = expected.out;
    out.writeUniqueId(TextNode::s_plugininfo.id);
    out.writeUniqueId(node.m_id);
    out.writeString("node");
    out.writeBool(false);
    out.writeBool(true);
    out.writeInt(-3);
    out.writeInt(120);
    out.writeUInt(1); // input groups
    out.writeUniqueId(node.m_inputs->m_id);
    out.writeString("Inputs");
    out.writeBool(false);
    out.writeBool(true);
    out.writeUInt(1); // properties
    out.writeString("Text");
    out.writeInt(8);
    out.writeUniqueId(node.m_text.m_id);
    out.writeBool(true);
    out.writeInt(120);
    out.writeString("value");
    out.writeBool(true);
    out.writeUInt(1); // keys
    out.writeUInt(4);
    out.writeUInt(0);
    out.writeFloat(1);
    out.writeUInt(2);
    for (const float parameter : {3.0f, 4.0f, 5.0f, 6.0f, 7.0f})
        out.writeFloat(parameter);
    out.writeVec4({8, 9, 10, 11});
    out.writeVec4({12, 13, 14, 15});
    out.writeInt(16);
    out.writeFloat(17);
    out.writeUInt(0); // output groups
    out.writeUInt(0); // children
    out.writeFloat(1.5f);
    out.writeFloat(2.5f);
    EXPECT_TRUE(writeRecord(node) == expected.take());
}

TEST_F(ScriptTest, OldVersionsLackFieldOfViewAndCamera)
{
    const UniqueId id = generateUniqueId();
    for (const int version : {2, 4}) {
        HandWritten old;
        old.out.writeUniqueId(id);
        old.out.writeString("old");
        old.out.writeBool(true);
        old.out.writeBool(false);
        if (version >= 3)
            old.out.writeFloat(60.0f);
        const std::string root = writeRecord(*sample.composition->m_rootEffect);
        old.out.writeBytes(root.data(), root.size());
        for (int count = 0; count < 3; ++count) // compositions, nodes, links
            old.out.writeUInt(0);

        const SmartRef<Composition> composition(new Composition(true, true));
        const UniqueId cameraId = composition->m_camera->m_id;
        EXPECT_EQ(readRecord(*composition, old.take(), version), "");
        EXPECT_TRUE(composition->m_id == id);
        EXPECT_EQ(composition->m_fov, version >= 3 ? 60.0f : 45.0f);
        EXPECT_TRUE(composition->m_camera->m_id == cameraId);
        EXPECT_EQ(composition->getAllObjects().size(), 4u);
    }
}

TEST_F(ScriptTest, CurvesOfAnotherWidthKeepTheStreamInStep)
{
    RecordingEffect effect;
    effect.onInit();
    for (PropertyBase* property :
         {static_cast<PropertyBase*>(&effect.m_float), static_cast<PropertyBase*>(&effect.m_vec3)})
    {
        property->setKeyframe(new Keyframe(2));
        Key* key = property->m_keyframe->createKey();
        key->values[0] = 5.0f;
        key->values[1] = 6.0f;
        property->m_keyframe->addKey(key, true);
    }
    effect.m_string = "behind them";

    RecordingEffect read;
    EXPECT_EQ(readRecord(read, writeRecord(effect).substr(16)), "");
    EXPECT_EQ(read.m_string.m_value, "behind them");
    EXPECT_EQ(read.m_float.m_keyframe->evaluate(0.0f)[0], 5.0f);
    const float* values = read.m_vec3.m_keyframe->evaluate(0.0f);
    EXPECT_TRUE(values[0] == 5.0f && values[1] == 6.0f && values[2] == 0.0f);
}

TEST_F(ScriptTest, PropertiesThatTheClassLacksCostOnlyThemselves)
{
    std::string bytes = writeRecord(*sample.composition);
    // One name that isn't there any more, one kind that has changed; both with curves.
    const std::size_t outer = bytes.find(bytesOf(sample.outer->m_id));
    patch(bytes, "Float", "Flout", outer);
    patch(bytes, std::string("Rotation\5", 9), std::string("Rotation\4", 9), outer);
    patch(bytes, "Outputs", "Outlets", outer);

    const SmartRef<Composition> copy(new Composition(true, true));
    EXPECT_EQ(readRecord(*copy, bytes), "");
    const auto* read = static_cast<RecordingEffect*>(copy->findObject(sample.outer->m_id));
    EXPECT_FALSE(read->m_float.m_hasValue || read->m_float.m_keyframe);
    EXPECT_FALSE(read->m_rotation.m_hasValue || read->m_rotation.m_keyframe);
    EXPECT_EQ(read->m_int.m_value, sample.outer->m_int.m_value);
    EXPECT_EQ(read->m_string.m_value, sample.outer->m_string.m_value);
    EXPECT_EQ(copy->m_schematics->m_nodes.size(), 3u);
    EXPECT_EQ(copy->m_schematics->m_links.size(), 2u) << "the link to the lost output goes, the others stay";
}

} // namespace helvantine
