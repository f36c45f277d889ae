// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "SampleComposition.h"

#include <helvantine/core/Report.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Layer.h>

#include <chrono>
#include <limits>
#include <random>

namespace helvantine
{

using testplugin::addEffect;
using testplugin::bytesOf;
using testplugin::patch;
using testplugin::readRecord;
using testplugin::RecordingEffect;
using testplugin::SampleComposition;
using testplugin::SumNode;
using testplugin::takeLog;
using testplugin::writeRecord;

namespace
{

struct ScriptHostileTest : ::testing::Test
{
    ScriptHostileTest() : bytes(writeRecord(*sample.composition)) { takeProblems(); }

    /// Reads into a new composition, which is then used.
    std::string read(const std::string& stream)
    {
        composition = new Composition(true, true);
        const std::string failure = readRecord(*composition, stream);
        for (const int frame : {0, 6, 100}) {
            FxUpdateContext context;
            context.frame = frame;
            composition->update(context);
        }
        takeLog();
        return failure;
    }

    testplugin::Runtime runtime;
    SampleComposition sample;
    std::string bytes;
    SmartRef<Composition> composition;
};

} // namespace

TEST_F(ScriptHostileTest, TruncatedAnywhereLeavesWhatCameBefore)
{
    std::size_t most = 0;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_NE(read(bytes.substr(0, size)), "") << size;
        EXPECT_EQ(takeProblems().size(), 1u) << size;
        const std::size_t objects = composition->getAllObjects().size();
        EXPECT_GE(objects + 2, most) << "what was whole stays; only children's roots come late";
        most = std::max(most, objects);
    }
    EXPECT_EQ(read(bytes), "");
    EXPECT_TRUE(takeProblems().empty());
}

TEST_F(ScriptHostileTest, DamagedBytesNeverCrash)
{
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string damaged = bytes;
        for (unsigned i = 0; i <= random() % 4; ++i)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        read(damaged);
    }
}

TEST_F(ScriptHostileTest, UnknownEffectCostsItselfAndWhatIsBelow)
{
    const UniqueId unknown = stringToUniqueId("11111111-2222-3333-4444-555555555555");
    patch(bytes, bytesOf(RecordingEffect::s_plugininfo.id), bytesOf(unknown));

    EXPECT_EQ(read(bytes), "");
    EXPECT_EQ(composition->findObject(sample.outer->m_id), nullptr);
    EXPECT_EQ(composition->m_rootEffect->m_children.size(), 1u);
    EXPECT_EQ(composition->m_schematics->m_nodes.size(), 2u) << "its node goes with it";
    EXPECT_EQ(composition->m_schematics->m_links.size(), 1u);
    EXPECT_EQ(composition->m_compositions.size(), 2u);
    const auto problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    const std::string& text = problems[0].text;
    EXPECT_TRUE(
        text.starts_with("effect of unknown class 11111111-2222-3333-4444-555555555555 left out at offset "))
        << text;
    EXPECT_TRUE(text.ends_with(", in Layer of composition \"sample\"")) << text;
}

TEST_F(ScriptHostileTest, UnknownNodeEndsReadingThere)
{
    const std::size_t graph = bytes.rfind(bytesOf(SumNode::s_plugininfo.id));
    patch(bytes, bytesOf(SumNode::s_plugininfo.id), bytesOf(Layer::s_plugininfo.id), graph);

    const std::string failure = read(bytes);
    EXPECT_TRUE(
        failure.starts_with("script: node of unknown class EFFE8B44-942F-11E4-9F81-B6780E197DCE at offset "))
        << failure;
    EXPECT_NE(composition->findObject(sample.inner->m_id), nullptr);
    EXPECT_EQ(composition->m_schematics->m_nodes.size(), 2u);
    EXPECT_TRUE(composition->m_schematics->m_links.empty());
}

TEST_F(ScriptHostileTest, CountsAreCheckedBeforeAnythingIsMade)
{
    std::string record = writeRecord(*sample.inner);
    const std::size_t at =
        record.find(std::string("\2\0\0\0\1\0\0\0", 8)); // end frame, count of input groups
    ASSERT_NE(at, std::string::npos);
    record.replace(at + 4, 4, "\xFF\xFF\xFF\xFF");

    RecordingEffect effect;
    const std::string failure = readRecord(effect, record.substr(16));
    const std::size_t left = record.size() - at - 8;
    EXPECT_EQ(failure, "script: count of 4294967295 input groups at offset " + std::to_string(at - 16 + 8) +
                           ", " + std::to_string(left) + " bytes left, in RecordingEffect \"inner\"");
    EXPECT_NE(effect.m_effectNode, nullptr) << "what was read so far can be used";
}

TEST_F(ScriptHostileTest, NestingHasALimit)
{
    const SmartRef<Composition> deep(new Composition(true, true));
    Effect* parent = deep->m_rootEffect.get();
    for (int depth = 0; depth < 600; ++depth) {
        auto* child = new Layer;
        child->onInit();
        parent->addObject(child, -1);
        parent = child;
    }
    const std::string failure = read(writeRecord(*deep));
    EXPECT_TRUE(failure.starts_with("script: records nested deeper than 512 at offset ")) << failure;
    EXPECT_GT(composition->getAllObjects().size(), 400u);
}

TEST_F(ScriptHostileTest, LongNamesAndDeepNestingDontMultiplyWithWhatIsWrong)
{
    const SmartRef<Composition> outer(new Composition(true, true));
    Composition* deep = outer.get();
    for (int level = 0; level < 300; ++level) {
        const RecordingEffect* effect = addEffect(*deep->m_rootEffect, "e", 0, 1);
        deep->m_schematics->addNode(effect->m_effectNode.get());
        deep->addComposition(new Composition(true, true));
        deep = deep->m_compositions[0].get();
        deep->m_name.assign(20000, 'n');
    }
    for (int i = 0; i < 3000; ++i) {
        addEffect(*deep->m_rootEffect, "known", 0, 1);
        addEffect(*deep->m_rootEffect, "x", 0, 1);
    }
    const UniqueId known = RecordingEffect::s_plugininfo.id, unknown = generateUniqueId();
    std::string stream = writeRecord(*outer);
    std::size_t at = stream.size();
    for (int i = 0; i < 3000; ++i) { // every other effect, from behind
        at = stream.rfind(bytesOf(known), at - 1);
        stream.replace(at, 16, bytesOf(unknown));
        at = stream.rfind(bytesOf(known), at - 1);
    }

    SmartRef<Composition> copy(new Composition(true, true));
    MemoryBuffer buffer({stream.begin(), stream.end()});
    FxSerializer serializer("test", &buffer, false, nullptr);
    serializer.setVersion(g_formatVersion);
    const auto start = std::chrono::steady_clock::now();
    copy->serialize(serializer);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;

    EXPECT_EQ(serializer.getFailureText(), "");
    EXPECT_LT(taken.count(), 2.0);
    ASSERT_EQ(serializer.getProblems().size(), FxSerializer::s_maxProblems);
    const LoadProblem& problem = serializer.getProblems().back();
    EXPECT_EQ(problem.path.substr(0, 5), ".../n");
    EXPECT_LT(problem.path.size(), 5000u);
    EXPECT_LT(problem.object.size(), 300u);
    EXPECT_EQ(copy->m_schematics->m_nodes.size(), 1u);
}

TEST_F(ScriptHostileTest, LinksThatNeverSettleHoldUpNothing)
{
    const SmartRef<Composition> rings(new Composition(true, true));
    auto* node = new SumNode;
    node->m_a = std::numeric_limits<float>::quiet_NaN();
    rings->m_schematics->addNode(node);
    std::string stream = writeRecord(*rings);

    // Two links that pass a NaN round and round, and each of the others sets it off again.
    constexpr std::uint32_t count = 300000;
    stream.resize(stream.size() - sizeof(count));
    stream.append(reinterpret_cast<const char*>(&count), sizeof(count));
    const std::string a = bytesOf(node->m_a.m_id), b = bytesOf(node->m_b.m_id);
    for (std::uint32_t i = 0; i < count; ++i)
        stream += i % 2 == 0 ? a + b : b + a;

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(read(stream), "");
    EXPECT_EQ(composition->m_schematics->m_links.size(), count);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(ScriptHostileTest, LinksBetweenUnlikeValuesAreDropped)
{
    // The last link runs from a text to a text; its target becomes a float.
    patch(bytes, bytesOf(sample.inner->m_string.m_id), bytesOf(sample.producer->m_a.m_id),
          bytes.rfind(bytesOf(sample.outer->m_string.m_id)));
    EXPECT_EQ(read(bytes), "");
    EXPECT_EQ(composition->m_schematics->m_links.size(), 2u);
}

} // namespace helvantine
