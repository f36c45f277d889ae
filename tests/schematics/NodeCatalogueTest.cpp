// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/Schematics.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace helvantine
{

namespace
{

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

struct NodeCatalogue : ::testing::Test
{
    testplugin::Runtime runtime;
    FxUpdateContext context;

    template <class Property>
    static Property& pin(const std::vector<SmartRef<PropertyGroup>>& groups, const char* name)
    {
        return static_cast<Property&>(*groups.at(0)->findProperty(name));
    }
    template <class Property>
    static Property& input(SchematicsNode& node, const char* name)
    {
        return pin<Property>(node.m_inputGroups, name);
    }
    template <class Property>
    static Property& output(SchematicsNode& node, const char* name = "Output")
    {
        return pin<Property>(node.m_outputGroups, name);
    }

    /// The output of a fresh node whose inputs are set.
    template <class Node>
    Vec4 compute(const Vec4& first, const Vec4& second)
    {
        const SmartRef<Node> node(new Node);
        input<Vec4Property>(*node, "Input-1") = first;
        input<Vec4Property>(*node, "Input-2") = second;
        node->update(context);
        return output<Vec4Property>(*node).m_value;
    }
    template <class Node, class To, class From>
    auto convert(const From& value)
    {
        const SmartRef<Node> node(new Node);
        input<ValueProperty<From>>(*node, "Input") = value;
        node->update(context);
        return output<ValueProperty<To>>(*node).m_value;
    }
    Vec4 clamp(const Vec4& value, const Vec4& low, const Vec4& high)
    {
        const SmartRef<ClampNode> node(new ClampNode);
        input<Vec4Property>(*node, "Input") = value;
        input<Vec4Property>(*node, "Clamp Min") = low;
        input<Vec4Property>(*node, "Clamp Max") = high;
        node->update(context);
        return output<Vec4Property>(*node).m_value;
    }
};

/// Counts the changes that its input is told.
struct CountingNode : FloatNode
{
    void onPropertyChanged(PropertyBase* property) override
    {
        FloatNode::onPropertyChanged(property);
        if (property == &m_in.property)
            ++changes;
    }

    int changes = 0;
};

} // namespace

TEST_F(NodeCatalogue, ArithmeticGoesByComponent)
{
    const Vec4 a(1.5f, -2, 8, 0.1f);
    const Vec4 b(4, 0.5f, -3, 0.2f);
    EXPECT_EQ(compute<AddNode>(a, b), Vec4(5.5f, -1.5f, 5, 0.1f + 0.2f));
    EXPECT_EQ(compute<SubNode>(a, b), Vec4(-2.5f, -2.5f, 11, 0.1f - 0.2f));
    EXPECT_EQ(compute<MulNode>(a, b), Vec4(6, -1, -24, 0.1f * 0.2f));
    EXPECT_EQ(compute<DivNode>(a, b), Vec4(0.375f, -4, 8.0f / -3.0f, 0.1f / 0.2f));
}

TEST_F(NodeCatalogue, DivisionByZeroGivesZero)
{
    const Vec4 quotient = compute<DivNode>(Vec4(5, 5, 5, 0), Vec4(0, -0.0f, nan, 2));
    EXPECT_EQ(quotient.x, 0);
    EXPECT_EQ(quotient.y, 0);
    EXPECT_TRUE(std::isnan(quotient.z));
    EXPECT_EQ(quotient.w, 0);
    // A new node divides by 1.
    const SmartRef<DivNode> node(new DivNode);
    input<Vec4Property>(*node, "Input-1") = Vec4(1, 2, 3, 4);
    node->update(context);
    EXPECT_EQ(output<Vec4Property>(*node).m_value, Vec4(1, 2, 3, 4));
}

TEST_F(NodeCatalogue, ClampLetsTheUpperBoundWin)
{
    const SmartRef<ClampNode> fresh(new ClampNode);
    input<Vec4Property>(*fresh, "Input") = Vec4(0.5f, 2, -1, 1);
    fresh->update(context);
    EXPECT_EQ(output<Vec4Property>(*fresh).m_value, Vec4(0.5f, 1, 0, 1));
    EXPECT_EQ(clamp(Vec4(0, 1.5f, 3, -7), Vec4(2, 2, 2, 2), Vec4(1, 1, 1, 1)), Vec4(1, 1, 1, 1));
    EXPECT_TRUE(std::isnan(clamp(Vec4(nan, 0, 0, 0), Vec4(), Vec4(1, 1, 1, 1)).x));
}

TEST_F(NodeCatalogue, MathsIsExactToTheBit)
{
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    EXPECT_EQ(bits((convert<ToDegreesNode, float>(1.0f))), 0x42652EE0u);
    EXPECT_EQ(bits((convert<ToRadiansNode, float>(1.0f))), 0x3C8EFA35u);
    EXPECT_EQ(bits((convert<SinNode, float>(100.0f))), bits(static_cast<float>(std::sin(100.0))));
    EXPECT_EQ(bits((convert<CosNode, float>(1e6f))), bits(static_cast<float>(std::cos(1e6))));
    const Vec4 positive = convert<AbsNode, Vec4>(Vec4(-0.0f, -2.5f, 3, -nan));
    EXPECT_EQ(bits(positive.x), 0u);
    EXPECT_EQ(positive.y, 2.5f);
    EXPECT_EQ(positive.z, 3);
    EXPECT_TRUE(std::isnan(positive.w));

    const SmartRef<DistanceNode> distance(new DistanceNode);
    input<Vec3Property>(*distance, "Input-1") = Vec3(0.1f, 10000.3f, -7.7f);
    input<Vec3Property>(*distance, "Input-2") = Vec3(2.2f, 0.4f, 3.3f);
    distance->update(context);
    const float dx = 0.1f - 2.2f;
    const float dy = 10000.3f - 0.4f;
    const float dz = -7.7f - 3.3f;
    volatile float sum = dy * dy;
    sum = sum + dx * dx;
    sum = sum + dz * dz;
    EXPECT_EQ(output<FloatProperty>(*distance, "Distance").m_value,
              static_cast<float>(std::sqrt(static_cast<double>(sum))));
}

TEST_F(NodeCatalogue, ConvertersCutAndPrint)
{
    EXPECT_EQ((convert<ConvertFloatToIntNode, int32_t>(-1.9f)), -1);
    EXPECT_EQ((convert<ConvertFloatToIntNode, int32_t>(1.9f)), 1);
    EXPECT_EQ((convert<ConvertFloatToIntNode, int32_t>(3e9f)), std::numeric_limits<int32_t>::min());
    EXPECT_EQ((convert<ConvertIntToFloatNode, float>(int32_t{16777217})), 16777216.0f);
    EXPECT_EQ((convert<ConvertFloatToStringNode, std::string>(1.5f)), "1.500000");
    EXPECT_EQ((convert<ConvertIntToStringNode, std::string>(int32_t{-12})), "-12");
    EXPECT_EQ((convert<ConvertStringToFloatNode, float>(std::string(" 2.25 bars"))), 2.25f);
    EXPECT_EQ((convert<ConvertStringToIntNode, int32_t>(std::string("bars"))), 0);
}

TEST_F(NodeCatalogue, BuildersPackAndSplittersUnpackInOrder)
{
    const SmartRef<Vec4BuilderNode> builder(new Vec4BuilderNode);
    const SmartRef<Vec4SplitterNode> splitter(new Vec4SplitterNode);
    const char* names[] = {"X", "Y", "Z", "W"};
    for (int i = 0; i < 4; ++i)
        input<FloatProperty>(*builder, names[i]) = static_cast<float>(i + 1);
    builder->update(context);
    EXPECT_EQ(output<Vec4Property>(*builder).m_value, Vec4(1, 2, 3, 4));

    // The splitter's input is the pin "Output", and a link's target.
    Schematics graph;
    graph.addNode(builder.get());
    graph.addNode(splitter.get());
    auto& target = input<Vec4Property>(*splitter, "Output");
    ASSERT_TRUE(graph.canAddLink(&output<Vec4Property>(*builder), &target));
    graph.addLink(new PropertyLink(&output<Vec4Property>(*builder), &target));
    input<FloatProperty>(*builder, "Z") = 9;
    graph.update(context);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(output<FloatProperty>(*splitter, names[i]).m_value,
                  i == 2 ? 9.0f : static_cast<float>(i + 1));
}

TEST_F(NodeCatalogue, AnUnchangedOutputTellsNobody)
{
    const SmartRef<FloatNode> source(new FloatNode);
    const SmartRef<CountingNode> target(new CountingNode);
    Schematics graph;
    graph.addNode(source.get());
    graph.addNode(target.get());
    graph.addLink(new PropertyLink(&output<FloatProperty>(*source), &input<FloatProperty>(*target, "Input")));
    target->changes = 0; // the new link has told its target once
    input<FloatProperty>(*source, "Input") = 2;
    for (int i = 0; i < 3; ++i)
        graph.update(context);
    EXPECT_EQ(target->changes, 1);
}

TEST_F(NodeCatalogue, TimeIsTheCompositions)
{
    context.time = 2.5f;
    const SmartRef<TimeNode> node(new TimeNode);
    EXPECT_TRUE(node->m_inputGroups.empty());
    node->update(context);
    EXPECT_EQ(output<Vec4Property>(*node, "Output Vec4").m_value, Vec4(2.5f, 2.5f, 2.5f, 2.5f));
    EXPECT_EQ(output<FloatProperty>(*node, "Output Float").m_value, 2.5f);
}

TEST_F(NodeCatalogue, AStringNodeShowsItsTextToTheEditor)
{
    const SmartRef<StringNode> node(new StringNode);
    EXPECT_TRUE(node->hasText());
    node->setText("words");
    EXPECT_EQ(input<StringProperty>(*node, "Input").m_value, "words");
    EXPECT_EQ(node->getText(), "words");
    EXPECT_EQ(node->getTextLog(), "");
    node->update(context);
    EXPECT_EQ(output<StringProperty>(*node).m_value, "words");
}

} // namespace helvantine
