// SPDX-License-Identifier: MIT
// Documents of some megabytes that are made to cost as much as they can.
#include <gtest/gtest.h>

#include "ReadLimits.h"
#include "ScriptBuilder.h"
#include "ScriptStream.h"

#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <cstring>
#include <functional>
#include <random>

namespace helvantine
{

using testplugin::readWithinLimits;
using testplugin::ScriptBuilder;

namespace
{

constexpr std::size_t s_scriptBytes = 4 << 20; ///< what many records fill

struct HostileCostTest : ::testing::Test
{
    /// The classes that documents can hold, as records of their own.
    std::vector<const PluginInfo*> getClasses() const
    {
        std::vector<const PluginInfo*> classes;
        for (const auto& factory : runtime.application.getPluginManager()->m_factories) {
            for (const PluginInfo* info : factory->m_plugins) {
                if (info->kind != PluginResource && info->id != EffectNode::s_plugininfo.id)
                    classes.push_back(info);
            }
        }
        return classes;
    }

    testplugin::Runtime runtime;
};

UniqueId makeId(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d)
{
    const std::uint32_t words[4] = {a, b, c, d};
    UniqueId id;
    static_assert(sizeof(words) == sizeof(id));
    std::memcpy(&id, words, sizeof(id));
    return id;
}

/// Of no object, and of no class.
UniqueId makeStrangeId(unsigned number)
{
    UniqueId id;
    id.data1 = number;
    id.data2 = 1;
    return id;
}

void addMinimalNode(ScriptBuilder& script, const UniqueId& classId)
{
    script.beginNode(classId);
    script.endNode();
    const bool makesResource =
        classId == ShaderNode::s_plugininfo.id || classId == MaterialShaderNode::s_plugininfo.id;
    if (makesResource || classId == AnimatedResourceNode::s_plugininfo.id)
        script.out().writeInt(1);
    if (makesResource)
        script.addId();
}

/// The least that a record of the class can hold.
void addMinimalRecord(ScriptBuilder& script, const PluginInfo& info)
{
    if (info.kind == PluginNode)
        return addMinimalNode(script, info.id);
    if (info.kind == PluginResourceImporter)
        script.out().writeBool(false);
    script.beginObject(info.id);
    script.endObject();
    if (info.kind == PluginEffect)
        return script.addNodeOfEffect();
    script.addResourceFields();
    script.out().writeUInt(0);
}

/// A document of that many minimal records, with a link to make an index of all properties.
std::string makeDocument(const PluginInfo& info, unsigned count)
{
    const auto countOf = [&](PluginKind kind) { return info.kind == kind ? count : 0; };
    ScriptBuilder script;
    const auto addAll = [&](PluginKind kind) {
        for (unsigned i = 0; i < countOf(kind); ++i)
            addMinimalRecord(script, info);
    };
    script.beginDocument(countOf(PluginResourceImporter));
    addAll(PluginResourceImporter);
    script.beginComposition(countOf(PluginEffect));
    addAll(PluginEffect);
    script.endEffects();
    script.out().writeUInt(countOf(PluginNode));
    addAll(PluginNode);
    script.out().writeUInt(1);
    script.addLink(makeStrangeId(1), makeStrangeId(2));
    return script.endDocument();
}

/// The same with as many records as fill the script.
std::string fillDocument(const PluginInfo& info)
{
    const std::size_t none = makeDocument(info, 0).size();
    const std::size_t one = makeDocument(info, 1).size() - none;
    return makeDocument(info, static_cast<unsigned>(s_scriptBytes / one));
}

/// Effects whose class had no properties yet. Returns how many bytes each takes.
std::size_t addBareEffects(ScriptBuilder& script, unsigned count)
{
    const std::size_t start = script.getSize();
    for (unsigned i = 0; i < count; ++i) {
        script.beginObject(TextureEffect::s_plugininfo.id, 0, "e");
        script.endObject();
        script.addNodeOfEffect();
    }
    return (script.getSize() - start) / count;
}

/// A document of such effects alone.
std::string makeBareEffects(ScriptBuilder& script, unsigned count)
{
    script.beginDocument();
    script.beginComposition(count);
    addBareEffects(script, count);
    script.endEffects();
    script.out().writeUInt(0);
    script.out().writeUInt(0);
    return script.endDocument();
}

} // namespace

TEST_F(HostileCostTest, RecordsHoldNothingOfTheirClass)
{
    unsigned refused = 0;
    for (const PluginInfo* info : getClasses()) {
        refused += readWithinLimits(fillDocument(*info)).failure.empty() ? 0 : 1;
        ASSERT_FALSE(HasFailure()) << info->name;
    }
    EXPECT_GT(refused, 20u);
}

TEST_F(HostileCostTest, RecordsThatASaveWritesLeaveOutNothing)
{
    for (const PluginInfo* info : getClasses()) {
        const SmartRef<Object> saved(static_cast<Object*>(createPlugin(info->id)));
        const SmartRef<Object> read(static_cast<Object*>(createPlugin(info->id)));
        const std::string record = testplugin::writeRecord(*saved).substr(sizeof(UniqueId));
        MemoryBuffer buffer({record.begin(), record.end()});
        FxSerializer serializer("test", &buffer, false, nullptr);
        serializer.setVersion(g_formatVersion);
        read->serialize(serializer);
        EXPECT_EQ(serializer.getFailureText(), "") << info->name;
        EXPECT_EQ(serializer.getMissingBytes(), 0u) << info->name;
    }
}

TEST_F(HostileCostTest, RecordsWithIdsOfTheirOwnMayLeaveOutWhatTheirClassGained)
{
    constexpr unsigned count = 40000;
    std::mt19937 random(1);
    const auto word = [&] { return static_cast<std::uint32_t>(random()); };
    ScriptBuilder script;
    script.setIdForm([&](unsigned) { return makeId(word(), word(), word(), word()); });
    const std::string bytes = makeBareEffects(script, count);
    runtime.application.newDocument(nullptr);
    Document& document = *runtime.application.getDocument();
    EXPECT_EQ(testplugin::readRecord(document, bytes), "");
    EXPECT_EQ(document.getCompositionManager()->getRoot()->m_rootEffect->m_children.size(), count);
}

TEST_F(HostileCostTest, RecordsWithIdsThatPackToNothingMayNot)
{
    const auto piece = [](unsigned index) { return (index % 256 + 1) * 2654435761u; };
    const std::function<UniqueId(unsigned)> forms[] = {
        [](unsigned n) { return n % 2 ? makeId(1, 2, 3, 4) : makeId(5, 6, 7, 8); },
        [](unsigned n) { return makeId(n / 4, n / 4, n % 2 ? n : 0, n % 2 ? 0 : n); },
        [&](unsigned n) { return makeId(piece(n), piece(n + 1), piece(n / 256), piece(n / 256 + 1)); },
    };
    for (const auto& form : forms) {
        ScriptBuilder script;
        script.setIdForm(form);
        EXPECT_NE(readWithinLimits(makeBareEffects(script, 40000)).failure, "") << &form - forms;
    }
}

TEST_F(HostileCostTest, SaysWhereItStoppedForWhatRecordsLeaveOut)
{
    constexpr unsigned count = 30000;
    ScriptBuilder script;
    script.beginDocument();
    script.beginComposition(count);
    const std::size_t start = script.getSize();
    const std::size_t recordBytes = addBareEffects(script, count);
    script.endEffects();
    script.out().writeUInt(0);
    script.out().writeUInt(0);

    const testplugin::ReadOutcome outcome = readWithinLimits(script.endDocument());
    ASSERT_EQ(outcome.problems.size(), 1u);
    const LoadProblem& problem = outcome.problems[0];
    EXPECT_EQ(problem.record, "TextureEffect");
    EXPECT_EQ(problem.object, "e");
    EXPECT_EQ(problem.expected, "records that hold their objects' properties");
    EXPECT_TRUE(problem.endsReading);
    const auto& effects =
        runtime.application.getDocument()->getCompositionManager()->getRoot()->m_rootEffect->m_children;
    EXPECT_GT(effects.size(), 1000u);
    // In front of the last one's children and node.
    EXPECT_EQ(problem.offset, start + effects.size() * recordBytes - 4 - 66);
}

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
    constexpr unsigned depth = 440, resources = 45000;
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

TEST_F(HostileCostTest, RecordRepeatsAValueThatIsWorkForItsObject)
{
    constexpr unsigned entries = 60000;
    ScriptBuilder script;
    script.beginGraph(1);
    script.beginNode(ShaderNode::s_plugininfo.id, 1);
    script.addGroup("Attributes", entries + 1);
    script.addProperty("Shader Code", KindString, std::string(1 << 20, ' '));
    for (unsigned i = 0; i < entries; ++i)
        script.addProperty("VS EntryPoint", KindString, i % 2 == 0 ? "a" : "b");
    script.endNode();
    script.out().writeInt(1);
    script.addId();
    script.out().writeUInt(0);
    EXPECT_EQ(readWithinLimits(script.endDocument()).failure, "");
}

TEST_F(HostileCostTest, CountGoesUpAndDownUnderTheIdOfAnotherNode)
{
    constexpr unsigned links = 20000, changes = 2000;
    ScriptBuilder script;
    script.beginDocument();
    script.beginComposition();
    script.endEffects(1);
    script.beginComposition();
    script.endEffects();
    script.out().writeUInt(2);
    const unsigned idCount = script.getIdCount();
    addMinimalNode(script, AnimatedResourceNode::s_plugininfo.id);
    const UniqueId value = script.addNode(FloatNode::s_plugininfo.id, "Input", KindFloat, "1");
    script.out().writeUInt(links);
    for (unsigned i = 0; i < links; ++i)
        script.addLink(value, value);

    script.out().writeUInt(1);
    script.repeatIds(idCount);
    script.beginNode(AnimatedResourceNode::s_plugininfo.id, 1);
    script.addGroup("Inputs", changes);
    for (unsigned i = 0; i < changes; ++i)
        script.addProperty("Resource Count", KindInt, i % 2 == 0 ? "4096" : "0");
    script.endNode();
    script.out().writeInt(1);
    script.out().writeUInt(0);
    EXPECT_EQ(readWithinLimits(script.endDocument()).failure, "");
}

TEST_F(HostileCostTest, RecordAddsToOneCurveAgainAndAgain)
{
    constexpr unsigned curves = 20000, resources = 4096;
    ScriptBuilder script;
    script.beginGraph(1);
    script.beginNode(AnimatedResourceNode::s_plugininfo.id, 2);
    script.addGroup("Inputs", 1 + curves);
    script.addProperty("Resource Count", KindInt, std::to_string(resources));
    Key key;
    for (unsigned i = 0; i < curves; ++i) {
        key.time = -static_cast<float>(i);
        script.addProperty("Index", KindInt, "", &key);
    }
    script.addGroup("Resources", resources);
    for (unsigned i = 0; i < resources; ++i)
        script.addProperty("", KindResource, "");
    script.endNode();
    script.out().writeInt(1);
    script.out().writeUInt(0);
    EXPECT_EQ(readWithinLimits(script.endDocument()).failure, "");
}

} // namespace helvantine
