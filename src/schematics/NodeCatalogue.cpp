// SPDX-License-Identifier: MIT
#include <helvantine/schematics/NodeCatalogue.h>

namespace helvantine
{

// The first operations that aren't inline: with them each class has one table of its operations.
AddNode::~AddNode() = default;
SubNode::~SubNode() = default;
MulNode::~MulNode() = default;
DivNode::~DivNode() = default;
ClampNode::~ClampNode() = default;
AbsNode::~AbsNode() = default;
DistanceNode::~DistanceNode() = default;
ToDegreesNode::~ToDegreesNode() = default;
ToRadiansNode::~ToRadiansNode() = default;
SinNode::~SinNode() = default;
CosNode::~CosNode() = default;
BoolNode::~BoolNode() = default;
IntNode::~IntNode() = default;
FloatNode::~FloatNode() = default;
Vec2Node::~Vec2Node() = default;
Vec3Node::~Vec3Node() = default;
Vec4Node::~Vec4Node() = default;
ColorNode::~ColorNode() = default;
StringNode::~StringNode() = default;
ResourceNode::~ResourceNode() = default;
Vec2BuilderNode::~Vec2BuilderNode() = default;
Vec3BuilderNode::~Vec3BuilderNode() = default;
Vec4BuilderNode::~Vec4BuilderNode() = default;
Vec2SplitterNode::~Vec2SplitterNode() = default;
Vec3SplitterNode::~Vec3SplitterNode() = default;
Vec4SplitterNode::~Vec4SplitterNode() = default;
ConvertFloatToIntNode::~ConvertFloatToIntNode() = default;
ConvertIntToFloatNode::~ConvertIntToFloatNode() = default;
ConvertFloatToStringNode::~ConvertFloatToStringNode() = default;
ConvertIntToStringNode::~ConvertIntToStringNode() = default;
ConvertStringToFloatNode::~ConvertStringToFloatNode() = default;
ConvertStringToIntNode::~ConvertStringToIntNode() = default;
TimeNode::~TimeNode() = default;

std::string StringNode::getText() const
{
    return m_in.property.m_value;
}

void StringNode::setText(const char* text)
{
    m_in.property = text ? text : "";
}

TimeNode::TimeNode()
    : m_outputVec4(this, KindVec4, "Output Vec4"), m_outputFloat(this, KindFloat, "Output Float"),
      m_outputs(new PropertyGroup(this, "Outputs"))
{
    m_outputVec4.setDefault({});
    m_outputFloat.setDefault({});
    addProperties(*m_outputs, {&m_outputVec4, &m_outputFloat});
    addOutputGroup(m_outputs.get());
}

void TimeNode::update(FxUpdateContext& context)
{
    m_outputFloat = context.time;
    m_outputVec4 = Vec4(context.time, context.time, context.time, context.time);
}

} // namespace helvantine
