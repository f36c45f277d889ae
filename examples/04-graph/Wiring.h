// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/host/CompositionBuilder.h>

#include <helvantine/schematics/SchematicsNode.h>

#include <concepts>
#include <initializer_list>
#include <map>
#include <vector>

/// The outputs of a node, in order. Stands for the first where one is wanted.
class Outputs
{
public:
    explicit Outputs(const helvantine::SchematicsNode& node)
        : m_properties(node.m_outputGroups.at(0)->m_properties)
    {
    }

    helvantine::PropertyBase& operator[](std::size_t index) const { return *m_properties.at(index); }
    operator helvantine::PropertyBase&() const { return *m_properties.at(0); }

private:
    const std::vector<helvantine::PropertyBase*>& m_properties;
};

/// What goes into a node: an output of another, or a value.
class Input
{
public:
    Input(helvantine::PropertyBase& source) : m_source(&source) {}
    Input(const Outputs& source) : Input(source[0]) {}
    template <class Value>
    requires std::convertible_to<Value, helvantine::PropertyValue> Input(const Value& value) : m_value(value)
    {
    }

private:
    friend class Wiring;
    helvantine::PropertyBase* m_source = nullptr;
    helvantine::PropertyValue m_value = 0; ///< where there is no source
};

/// Builds chains of nodes, and spreads them over the editor's canvas from left to right.
class Wiring
{
public:
    explicit Wiring(helvantine::CompositionBuilder& builder) : m_builder(builder) {}

    /// A new node of the class, with these inputs, which stand in the order of its own. One that doesn't fit is
    /// reported and left out.
    template <class Node>
    Outputs add(std::initializer_list<Input> inputs, const char* name = "")
    {
        Node& node = m_builder.addNode<Node>(name);
        fill(node, inputs);
        place(node, inputs);
        return Outputs(node);
    }

private:
    void fill(helvantine::SchematicsNode& node, std::initializer_list<Input> inputs);
    void place(helvantine::SchematicsNode& node, std::initializer_list<Input> inputs);

    helvantine::CompositionBuilder& m_builder;
    std::map<const helvantine::PropertyContext*, std::size_t> m_columns; ///< by the length of the chain
    std::vector<int> m_rows;                                             ///< how many nodes a column has
};
