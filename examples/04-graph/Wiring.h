// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vector.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Effect.h>

#include <initializer_list>
#include <map>
#include <string>
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
    Input(const helvantine::Vec4& value);
    Input(const std::string& value) : m_value(value) {}
    Input(const char* value) : m_value(value) {}

private:
    friend class Wiring;
    helvantine::PropertyBase* m_source = nullptr;
    std::string m_value; ///< where there is no source
};

/// Shorthands for building a graph. A link that isn't allowed is reported and left out.
class Wiring
{
public:
    explicit Wiring(helvantine::Schematics& graph) : m_graph(graph) {}

    /// A new node of the class, with these inputs, which stand in the order of its own.
    template <class Node>
    Outputs add(std::initializer_list<Input> inputs, const char* name = "")
    {
        auto* node = new Node;
        node->setName(name);
        addNode(*node, inputs);
        return Outputs(*node);
    }

    /// What the source becomes, the effect's property becomes.
    void connect(helvantine::PropertyBase& source, helvantine::Effect& effect, const char* property);
    void connect(helvantine::Effect& source, helvantine::Effect& effect, const char* property);

private:
    void addNode(helvantine::SchematicsNode& node, std::initializer_list<Input> inputs);
    void link(helvantine::PropertyBase& source, helvantine::PropertyBase& target);
    void place(helvantine::SchematicsNode& node, std::initializer_list<Input> inputs);

    helvantine::Schematics& m_graph;
    std::map<const helvantine::PropertyContext*, std::size_t>
        m_columns;           ///< on the canvas, by the length of the chain
    std::vector<int> m_rows; ///< how many nodes a column has
    int m_effects = 0;       ///< that are in the graph
};
