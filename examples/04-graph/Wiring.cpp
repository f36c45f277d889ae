// SPDX-License-Identifier: MIT
#include "Wiring.h"

#include <helvantine/core/Report.h>
#include <helvantine/object/PropertyBase.h>

#include <algorithm>

using namespace helvantine;

namespace
{

constexpr float columnWidth = 200;
constexpr float rowHeight = 120;

/// Counted through all groups. Inputs are asked for one by one: a count that is set makes further ones.
PropertyBase* findInput(const PropertyContext& context, std::size_t index)
{
    for (const SmartRef<PropertyGroup>& group : context.m_inputGroups) {
        if (index < group->m_properties.size())
            return group->m_properties[index];
        index -= group->m_properties.size();
    }
    return nullptr;
}

} // namespace

void Wiring::fill(SchematicsNode& node, std::initializer_list<Input> inputs)
{
    std::size_t index = 0;
    for (const Input& input : inputs) {
        PropertyBase* property = findInput(node, index++);
        std::string whyNot;
        if (!property)
            reportProblem("example", "too many inputs for " + node.describe());
        else if (input.m_source)
            m_builder.addLink(*input.m_source, *property);
        else if (!input.m_value.assignTo(*property, whyNot))
            reportProblem("example", node.describe() + ": '" + property->m_name + "' " + whyNot);
    }
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
