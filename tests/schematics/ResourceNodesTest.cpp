// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Report.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/testsupport/AllocationCount.h>
#include <helvantine/timeline/Composition.h>

#include <gtest/gtest.h>

#include <limits>

namespace helvantine
{

namespace
{

struct ResourceNodes : ::testing::Test
{
    ResourceNodes() { takeProblems(); }

    Schematics& graph()
    {
        return *runtime.application.getDocument()->getCompositionManager()->getRoot()->m_schematics;
    }
    ResourceManager& resources() { return *runtime.application.getDocument()->getResourceManager(); }

    template <class Node>
    Node* add()
    {
        auto* node = new Node;
        graph().addNode(node);
        return node;
    }

    static PropertyBase* input(const SchematicsNode& node, const std::string& name)
    {
        for (const SmartRef<PropertyGroup>& group : node.m_inputGroups) {
            if (PropertyBase* property = group->findProperty(name.c_str()))
                return property;
        }
        return nullptr;
    }
    static void set(const SchematicsNode& node, const std::string& name, const std::string& value)
    {
        ASSERT_NE(input(node, name), nullptr) << name;
        input(node, name)->fromString(value.c_str());
    }
    /// The resources in the list, in order, between blanks.
    static std::string list(const SchematicsNode& node)
    {
        std::string text;
        for (const PropertyBase* property : node.m_inputGroups.at(1)->m_properties)
            text += property->m_name + "=" + property->toString() + " ";
        return text;
    }
    std::string output(SchematicsNode& node)
    {
        FxUpdateContext context;
        node.update(context);
        return node.m_outputGroups.at(0)->m_properties.at(0)->toString();
    }

    template <class T>
    static std::unique_ptr<MemoryBuffer> save(T& object)
    {
        auto buffer = std::make_unique<MemoryBuffer>();
        FxSerializer serializer("", buffer.get(), true, nullptr);
        object.serialize(serializer);
        buffer->seek(0);
        return buffer;
    }
    /// Reads a node as the graph does; the text of the failure, or of bytes that were left over.
    static std::string load(SchematicsNode& node, MemoryBuffer& buffer)
    {
        FxSerializer serializer("", &buffer, false, nullptr);
        UniqueId classId;
        serializer.m_in.readUniqueId(classId);
        EXPECT_TRUE(classId == node.getPluginInfo()->id);
        node.serialize(serializer);
        if (!serializer.failed() && serializer.m_in.bytesLeft() > 0)
            return "bytes left";
        return serializer.getFailureText();
    }

    /// Fills a list of that length with "a", "b" and so on.
    static void fill(const SchematicsNode& node, int count)
    {
        set(node, "Resource Count", std::to_string(count));
        for (int i = 0; i < count; ++i)
            set(node, "Resource-" + std::to_string(i + 1), std::string(1, static_cast<char>('a' + i)));
    }

    testplugin::Runtime runtime;
};

} // namespace

TEST_F(ResourceNodes, AnIndexWrapsPastTheEndOfTheList)
{
    const SmartRef<AnimatedResourceNode> node(new AnimatedResourceNode);
    EXPECT_EQ(output(*node), "") << "no resources";
    fill(*node, 3);
    struct Case
    {
        const char* index;
        const char* resource;
    };
    for (const Case& c : {Case{"0", "a"},
                          {"1", "b"},
                          {"2", "c"},
                          {"3", "a"},
                          {"4", "b"},
                          {"-1", ""},
                          {"-3", "a"},
                          {"-4", ""},
                          {"2147483647", "c"},
                          {"-2147483648", ""}})
    {
        set(*node, "Index", c.index);
        EXPECT_EQ(output(*node), c.resource) << c.index;
    }
}

TEST_F(ResourceNodes, AListThatShrinksLosesItsLinksAndNothingElse)
{
    auto* node = add<AnimatedResourceNode>();
    auto* before = add<ResourceNode>();
    auto* behind = add<ResourceNode>();
    fill(*node, 3);
    PropertyBase* second = input(*node, "Resource-2");
    PropertyBase* third = input(*node, "Resource-3");
    PropertyBase* first = input(*node, "Resource-1");
    set(*before, "Resource", "linked");
    PropertyBase* source = before->m_outputGroups.at(0)->m_properties.at(0);
    output(*before);
    graph().addLink(new PropertyLink(source, first));
    graph().addLink(new PropertyLink(source, second));
    graph().addLink(new PropertyLink(third, input(*behind, "Resource")));
    EXPECT_EQ(list(*node), "Resource-1=linked Resource-2=linked Resource-3=c ");
    EXPECT_EQ(input(*behind, "Resource")->toString(), "c");
    const UniqueId thirdId = third->m_id;

    set(*node, "Resource Count", "1");
    EXPECT_EQ(list(*node), "Resource-1=linked ");
    EXPECT_EQ(graph().m_links.size(), 1u);
    EXPECT_EQ(input(*behind, "Resource")->toString(), "") << "unplugged";

    set(*node, "Resource Count", "-5");
    EXPECT_EQ(list(*node), "Resource-1=linked ") << "a negative count changes nothing";

    set(*node, "Resource Count", "4");
    EXPECT_EQ(list(*node), "Resource-1=linked Resource-2= Resource-3=c Resource-4= ");
    EXPECT_EQ(input(*node, "Resource-3"), third);
    EXPECT_TRUE(third->m_id == thirdId);
    EXPECT_EQ(graph().m_links.size(), 1u);
}

TEST_F(ResourceNodes, AListComesBackFromAFileAsItWas)
{
    // Of a node in no graph: there are no links to remove.
    const SmartRef<AnimatedResourceNode> node(new AnimatedResourceNode);
    fill(*node, 3);
    set(*node, "Resource Count", "0");
    for (const int count : {2, 0, 5, 3}) {
        set(*node, "Resource Count", std::to_string(count));
        const SmartRef<AnimatedResourceNode> copy(new AnimatedResourceNode);
        EXPECT_EQ(load(*copy, *save(*node)), "");
        EXPECT_EQ(list(*copy), list(*node)) << count;
        for (const PropertyBase* property : node->m_inputGroups.at(1)->m_properties)
            EXPECT_TRUE(input(*copy, property->m_name)->m_id == property->m_id);
        // Both go on alike, and so does what was read, read again.
        set(*copy, "Resource Count", "1");
        set(*copy, "Resource Count", "2");
        EXPECT_EQ(list(*copy).substr(0, 13), count > 0 ? "Resource-1=a " : "Resource-1= R");
        EXPECT_EQ(load(*copy, *save(*node)), "") << "over another list";
        EXPECT_EQ(list(*copy), list(*node));
    }

    const SmartRef<SchematicsNode> clone(node->clone());
    EXPECT_EQ(list(*clone), list(*node));
}

TEST_F(ResourceNodes, LinksFindTheListOfAGraphThatIsRead)
{
    auto* node = add<AnimatedResourceNode>();
    auto* source = add<ResourceNode>();
    auto* count = add<IntNode>();
    fill(*node, 2);
    set(*count, "Input", "2");
    EXPECT_EQ(output(*count), "2");
    PropertyBase* counted = count->m_outputGroups.at(0)->m_properties.at(0);
    graph().addLink(
        new PropertyLink(source->m_outputGroups.at(0)->m_properties.at(0), input(*node, "Resource-2")));
    graph().addLink(new PropertyLink(counted, input(*node, "Resource Count")));
    // In the file the output is older than the count: the link will empty the list until the first tick.
    static_cast<IntProperty*>(counted)->setDefault(0);
    Composition& composition = *runtime.application.getDocument()->getCompositionManager()->getRoot();
    const auto file = save(composition);
    const UniqueId nodeId = node->m_id;
    const UniqueId sourceId = source->m_id;
    runtime.application.newDocument(nullptr);

    // The document's own composition is found while it is read, another isn't.
    const SmartRef<Composition> other(new Composition(true, true));
    for (Composition* copy :
         {runtime.application.getDocument()->getCompositionManager()->getRoot(), other.get()}) {
        file->seek(0);
        FxSerializer serializer("", file.get(), false, nullptr);
        serializer.setVersion(static_cast<int>(g_formatVersion));
        copy->serialize(serializer);
        EXPECT_EQ(serializer.getFailureText(), "");
        EXPECT_EQ(copy->m_schematics->m_links.size(), 2u);
        set(*copy->m_schematics->findNode(sourceId), "Resource", "new");
        FxUpdateContext context;
        copy->m_schematics->update(context);
        EXPECT_EQ(list(*copy->m_schematics->findNode(nodeId)), "Resource-1=a Resource-2=new ");
    }
}

TEST_F(ResourceNodes, CountsThatNobodyMeansMakeNoListsForThem)
{
    const SmartRef<AnimatedResourceNode> node(new AnimatedResourceNode);
    set(*node, "Resource Count", "2147483647");
    EXPECT_EQ(node->m_inputGroups.at(1)->m_properties.size(), AnimatedResourceNode::s_maxResources);

    // A file that promises more than it holds ends there.
    set(*node, "Resource Count", "2");
    static_cast<IntProperty*>(input(*node, "Resource Count"))->setDefault(1000000); // in silence
    const SmartRef<AnimatedResourceNode> copy(new AnimatedResourceNode);
    const std::string failure = load(*copy, *save(*node));
    EXPECT_NE(failure.find("count of 1000000 resources"), std::string::npos) << failure;
}

TEST_F(ResourceNodes, ASteadyGraphAllocatesNothing)
{
    const std::string id = uniqueIdToString(generateUniqueId()); // longer than what a string keeps in itself
    auto* time = add<TimeNode>();
    auto* splitter = add<Vec4SplitterNode>();
    auto* sine = add<SinNode>();
    auto* toInt = add<ConvertFloatToIntNode>();
    auto* resource = add<ResourceNode>();
    auto* animated = add<AnimatedResourceNode>();
    add<ShaderNode>();
    add<MaterialShaderNode>();
    const auto connect = [&](SchematicsNode* from, std::size_t pin, SchematicsNode* to, const char* name) {
        graph().addLink(new PropertyLink(from->m_outputGroups.at(0)->m_properties.at(pin), input(*to, name)));
    };
    connect(time, 0, splitter, "Output");
    connect(splitter, 0, sine, "Input");
    connect(splitter, 1, toInt, "Input");
    connect(toInt, 0, animated, "Index");
    set(*resource, "Resource", id);
    set(*animated, "Resource Count", "2");
    set(*animated, "Resource-1", id);
    set(*animated, "Resource-2", uniqueIdToString(generateUniqueId()));
    FxUpdateContext context;
    graph().update(context);

    const std::size_t before = test::countAllocations();
    for (int frame = 0; frame < 10; ++frame) {
        context.time = static_cast<float>(frame);
        graph().update(context);
    }
    EXPECT_EQ(test::countAllocations(), before);
    EXPECT_EQ(output(*animated), input(*animated, "Resource-2")->toString());
}

TEST_F(ResourceNodes, AShaderNodeKeepsItsIdInAFile)
{
    const SmartRef<ShaderNode> node(new ShaderNode);
    const std::string id = output(*node);
    EXPECT_NE(findResourceOfType<ShaderResource>(id), nullptr);
    EXPECT_EQ(input(*node, "VS EntryPoint")->toString(), "VS_Main");
    EXPECT_EQ(input(*node, "PS EntryPoint")->toString(), "PS_Main");
    const auto file = save(*node);

    const SmartRef<ShaderNode> copy(new ShaderNode);
    const std::string formerId = output(*copy);
    auto* resource = findResourceOfType<ShaderResource>(formerId);
    EXPECT_EQ(load(*copy, *file), "");
    EXPECT_EQ(output(*copy), id);
    EXPECT_EQ(findResourceOfType<ShaderResource>(formerId), nullptr);
    EXPECT_EQ(findResourceOfType<ShaderResource>(id), resource);

    // The zero id would be found by every property that names nothing.
    std::vector<unsigned char> bytes(file->getData(), file->getData() + file->getSize());
    std::fill(bytes.end() - 16, bytes.end(), static_cast<unsigned char>(0));
    MemoryBuffer damaged(bytes);
    load(*copy, damaged);
    EXPECT_EQ(output(*copy), id);
    EXPECT_EQ(findResourceOfType<ShaderResource>(""), nullptr);
    bytes.pop_back();
    MemoryBuffer cut(bytes);
    EXPECT_NE(load(*copy, cut), "");
    EXPECT_EQ(findResourceOfType<ShaderResource>(id), resource) << "still published";
}

TEST_F(ResourceNodes, AShaderNodeShowsItsTextAndWhatTheCompilerSays)
{
    const SmartRef<ShaderNode> node(new ShaderNode);
    EXPECT_TRUE(node->hasText());
    EXPECT_EQ(node->getTextLog(), "") << "nothing was compiled yet";
    node->setText("text");
    EXPECT_EQ(node->getText(), "text");
    EXPECT_EQ(input(*node, "Shader Code")->toString(), "text");
    node->setText(nullptr);
    EXPECT_EQ(node->getText(), "");
    EXPECT_EQ(node->getTextLog(), "Invalid shader code");
}

TEST_F(ResourceNodes, WhatAShaderNodeMadeOutlivesIt)
{
    std::string id;
    {
        const SmartRef<MaterialShaderNode> node(new MaterialShaderNode);
        id = output(*node);
        EXPECT_FALSE(node->hasText());
    }
    auto* resource = findResourceOfType<MaterialShaderResource>(id);
    ASSERT_NE(resource, nullptr);
    EXPECT_TRUE(resource->getId() == stringToUniqueId(id.c_str()));
}

} // namespace helvantine
