// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/schematics/ComputeNode.h>
#include <helvantine/schematics/NodeOperations.h>

/// The small computing nodes of the graph. Each has the groups "Inputs" and "Outputs"; documents find pins by name.
namespace helvantine
{

namespace nodes
{

using namespace operations;

// What is alike. A number behind a pin's name is its default.

template <class Function, int secondDefault = 0>
using Arithmetic = ComputeNode<PerComponent<Function>,
                               Pins<Pin<KindVec4, "Input-1">, Pin<KindVec4, "Input-2", secondDefault>>,
                               Pins<Pin<KindVec4, "Output">>>;

template <std::uint32_t from, std::uint32_t to, class Function>
using Convert = ComputeNode<Function, Pins<Pin<from, "Input">>, Pins<Pin<to, "Output">>>;

template <std::uint32_t kind, int initial = 0>
using Value = ComputeNode<Same, Pins<Pin<kind, "Input", initial>>, Pins<Pin<kind, "Output">>>;

template <std::uint32_t kind, PinName... names>
using Build = ComputeNode<Pack<decltype(PinProperty<kind>::type::m_value)>, Pins<Pin<KindFloat, names>...>,
                          Pins<Pin<kind, "Output">>>;

/// The input is named "Output", deliberately: documents depend on that slip.
template <std::uint32_t kind, PinName... names>
using Splitter = ComputeNode<Split, Pins<Pin<kind, "Output">>, Pins<Pin<KindFloat, names>...>>;

} // namespace nodes

#define HELVANTINE_NODE(Class, ...)                                                                          \
    class HELVANTINE_FX_API Class : public __VA_ARGS__                                                       \
    {                                                                                                        \
        HELVANTINE_PLUGIN_CLASS(Class)                                                                       \
        ~Class() override;                                                                                   \
    };

// clang-format off

// Arithmetic
HELVANTINE_NODE(AddNode, nodes::Arithmetic<operations::Add>)
HELVANTINE_NODE(SubNode, nodes::Arithmetic<operations::Subtract>)
HELVANTINE_NODE(MulNode, nodes::Arithmetic<operations::Multiply>)
HELVANTINE_NODE(DivNode, nodes::Arithmetic<operations::Divide, 1>)
HELVANTINE_NODE(ClampNode, ComputeNode<operations::PerComponent<operations::Clamp>,
    Pins<Pin<KindVec4, "Input">, Pin<KindVec4, "Clamp Min">, Pin<KindVec4, "Clamp Max", 1>>, Pins<Pin<KindVec4, "Output">>>)

// Misc
HELVANTINE_NODE(AbsNode, nodes::Convert<KindVec4, KindVec4, operations::PerComponent<operations::Absolute>>)
HELVANTINE_NODE(DistanceNode, ComputeNode<operations::Distance,
    Pins<Pin<KindVec3, "Input-1">, Pin<KindVec3, "Input-2">>, Pins<Pin<KindFloat, "Distance">>>)
HELVANTINE_NODE(ToDegreesNode, nodes::Convert<KindFloat, KindFloat, operations::ToDegrees>)
HELVANTINE_NODE(ToRadiansNode, nodes::Convert<KindFloat, KindFloat, operations::ToRadians>)

// Trigonometric
HELVANTINE_NODE(SinNode, nodes::Convert<KindFloat, KindFloat, operations::Sine>)
HELVANTINE_NODE(CosNode, nodes::Convert<KindFloat, KindFloat, operations::Cosine>)

// Type
HELVANTINE_NODE(BoolNode, nodes::Value<KindBool>)
HELVANTINE_NODE(IntNode, nodes::Value<KindInt>)
HELVANTINE_NODE(FloatNode, nodes::Value<KindFloat>)
HELVANTINE_NODE(Vec2Node, nodes::Value<KindVec2>)
HELVANTINE_NODE(Vec3Node, nodes::Value<KindVec3>)
HELVANTINE_NODE(Vec4Node, nodes::Value<KindVec4>)
HELVANTINE_NODE(ColorNode, nodes::Value<KindColor, 1>)
HELVANTINE_NODE(Vec2BuilderNode, nodes::Build<KindVec2, "X", "Y">)
HELVANTINE_NODE(Vec3BuilderNode, nodes::Build<KindVec3, "X", "Y", "Z">)
HELVANTINE_NODE(Vec4BuilderNode, nodes::Build<KindVec4, "X", "Y", "Z", "W">)
HELVANTINE_NODE(Vec2SplitterNode, nodes::Splitter<KindVec2, "X", "Y">)
HELVANTINE_NODE(Vec3SplitterNode, nodes::Splitter<KindVec3, "X", "Y", "Z">)
HELVANTINE_NODE(Vec4SplitterNode, nodes::Splitter<KindVec4, "X", "Y", "Z", "W">)

// Converter
HELVANTINE_NODE(ConvertFloatToIntNode, nodes::Convert<KindFloat, KindInt, operations::FloatToInt>)
HELVANTINE_NODE(ConvertIntToFloatNode, nodes::Convert<KindInt, KindFloat, operations::IntToFloat>)
HELVANTINE_NODE(ConvertFloatToStringNode, nodes::Convert<KindFloat, KindString, operations::FloatToString>)
HELVANTINE_NODE(ConvertIntToStringNode, nodes::Convert<KindInt, KindString, operations::IntToString>)
HELVANTINE_NODE(ConvertStringToFloatNode, nodes::Convert<KindString, KindFloat, operations::StringToFloat>)
HELVANTINE_NODE(ConvertStringToIntNode, nodes::Convert<KindString, KindInt, operations::StringToInt>)

// clang-format on
#undef HELVANTINE_NODE

/// Passes a resource's id on.
class HELVANTINE_FX_API ResourceNode
    : public ComputeNode<operations::Same, Pins<Pin<KindResource, "Resource">>,
                         Pins<Pin<KindResource, "Output">>>
{
    HELVANTINE_PLUGIN_CLASS(ResourceNode)
    ~ResourceNode() override;
};

/// A text, which an editor shows and edits as the node's own.
class HELVANTINE_FX_API StringNode : public nodes::Value<KindString>
{
    HELVANTINE_PLUGIN_CLASS(StringNode)
    ~StringNode() override;

    bool hasText() const override { return true; }
    std::string getText() const override;
    void setText(const char* text) override;
};

/// The seconds on the composition's clock, not on that of any effect.
class HELVANTINE_FX_API TimeNode : public SchematicsNode
{
    HELVANTINE_PLUGIN_CLASS(TimeNode)
    TimeNode();
    ~TimeNode() override;

    void update(FxUpdateContext& context) override;

private:
    Vec4Property m_outputVec4;
    FloatProperty m_outputFloat;
    SmartRef<PropertyGroup> m_outputs;
};

} // namespace helvantine
