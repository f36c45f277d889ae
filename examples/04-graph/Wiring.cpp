// SPDX-License-Identifier: MIT
#include "Wiring.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/schematics/EffectNode.h>

#include <algorithm>

using namespace helvantine;

namespace
{

constexpr float columnWidth = 200;
constexpr float rowHeight = 120;

/// All inputs of a node or an effect, group by group. A count that makes further inputs has to be set before these are
/// asked for.
PropertyBase* findInput(const PropertyContext& context, std::size_t index)
{
    for (const SmartRef<PropertyGroup>& group : context.m_inputGroups) {
        if (index < group->m_properties.size())
            return group->m_properties[index];
        index -= group->m_properties.size();
    }
    return nullptr;
}

PropertyBase* findInput(const PropertyContext& context, const char* name)
{
    for (const SmartRef<PropertyGroup>& group : context.m_inputGroups) {
        if (PropertyBase* property = group->findProperty(name))
            return property;
    }
    reportProblem("example", std::string("no property \"") + name + "\"");
    return nullptr;
}

} // namespace

Input::Input(const Vec4& value) : m_value(formatString("%f, %f, %f, %f", value.x, value.y, value.z, value.w))
{
}

void Wiring::addNode(SchematicsNode& node, std::initializer_list<Input> inputs)
{
    m_graph.addNode(&node);
    std::size_t index = 0;
    for (const Input& input : inputs) {
        PropertyBase* property = findInput(node, index++);
        if (!property)
            reportProblem("example", std::string("too many inputs for ") + node.getTypeInfo()->name);
        else if (input.m_source)
            link(*input.m_source, *property);
        else
            property->fromString(input.m_value.c_str());
    }
    place(node, inputs);
}

void Wiring::connect(PropertyBase& source, Effect& effect, const char* property)
{
    PropertyBase* target = findInput(effect, property);
    if (!target)
        return;
    if (!m_graph.findNode(effect.m_effectNode->m_id)) {
        m_graph.addNode(effect.m_effectNode.get());
        effect.m_effectNode->setPosition({columnWidth * 16, rowHeight * static_cast<float>(m_effects++)});
    }
    link(source, *target);
}

void Wiring::connect(Effect& source, Effect& effect, const char* property)
{
    if (PropertyBase* from = findInput(source, property))
        connect(*from, effect, property);
}

void Wiring::link(PropertyBase& source, PropertyBase& target)
{
    if (m_graph.canAddLink(&source, &target))
        m_graph.addLink(new PropertyLink(&source, &target));
    else
        reportProblem("example", "no link from \"" + source.m_name + "\" to \"" + target.m_name + '"');
}

void Wiring::place(SchematicsNode& node, std::initializer_list<Input> inputs)
{
    std::size_t column = 0;
    for (const Input& input : inputs) {
        if (input.m_source)
            column = std::max(column, m_columns[input.m_source->m_context] + 1);
    }
    m_columns[&node] = column;
    m_rows.resize(std::max(m_rows.size(), column + 1));
    node.setPosition(
        {columnWidth * static_cast<float>(column), rowHeight * static_cast<float>(m_rows[column]++)});
}
