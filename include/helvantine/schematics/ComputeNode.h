// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/AddProperties.h>
#include <helvantine/object/Property.h>
#include <helvantine/schematics/SchematicsNode.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <type_traits>

namespace helvantine
{

/// The name of a pin, as a template argument.
template <std::size_t size>
struct PinName
{
    consteval PinName(const char (&name)[size]) { std::copy_n(name, size, text); }

    char text[size];
};

template <std::uint32_t kind>
struct PinProperty;
template <>
struct PinProperty<KindFloat> : std::type_identity<FloatProperty>
{
};
template <>
struct PinProperty<KindInt> : std::type_identity<IntProperty>
{
};
template <>
struct PinProperty<KindVec2> : std::type_identity<Vec2Property>
{
};
template <>
struct PinProperty<KindVec3> : std::type_identity<Vec3Property>
{
};
template <>
struct PinProperty<KindVec4> : std::type_identity<Vec4Property>
{
};
template <>
struct PinProperty<KindColor> : std::type_identity<Vec4Property>
{
};
template <>
struct PinProperty<KindBool> : std::type_identity<BoolProperty>
{
};
template <>
struct PinProperty<KindString> : std::type_identity<StringProperty>
{
};
template <>
struct PinProperty<KindResource> : std::type_identity<StringProperty>
{
};

/// A pin of a node: a property of this kind and name. Its default is 0, false, the empty text, or `initial` in each of
/// four components.
template <std::uint32_t kind, PinName name, int initial = 0>
struct Pin
{
    using Property = typename PinProperty<kind>::type;

    explicit Pin(PropertyContext* context) : property(context, kind, name.text)
    {
        if constexpr (std::is_same_v<Property, Vec4Property>)
            property.setDefault(Vec4(initial, initial, initial, initial));
        else
            property.setDefault({});
    }

    Property property;
};

/// Pins in the order in which they lie in the node, in their group and in documents.
template <class... P>
struct Pins : P...
{
    explicit Pins(PropertyContext* context) : P(context)... {}

    void addTo(PropertyGroup& group) { addProperties(group, {&static_cast<P&>(*this).property...}); }

    /// Calls the function with the properties.
    template <class Function>
    decltype(auto) apply(Function&& function)
    {
        return function(static_cast<P&>(*this).property...);
    }
};

/// A node that computes its outputs from its inputs, each time it is updated: `Operation::compute` takes the values of
/// the inputs, in order, and returns that of the output or a std::array with those of the outputs, in order.
/// Nothing is remembered: an output that comes out the same tells nobody.
template <class Operation, class Inputs, class Outputs>
class ComputeNode : public SchematicsNode
{
public:
    ComputeNode()
        : m_in(this), m_out(this), m_inputs(new PropertyGroup(this, "Inputs")),
          m_outputs(new PropertyGroup(this, "Outputs"))
    {
        m_in.addTo(*m_inputs);
        addInputGroup(m_inputs.get());
        m_out.addTo(*m_outputs);
        addOutputGroup(m_outputs.get());
    }

    void update(FxUpdateContext&) override
    {
        // A reference where the operation returns one: texts aren't copied on their way through.
        const auto& result = m_in.apply(
            [](const auto&... input) -> decltype(auto) { return Operation::compute(input.m_value...); });
        m_out.apply([&](auto&... output) { store(result, output...); });
    }

protected:
    Inputs m_in;
    Outputs m_out;
    SmartRef<PropertyGroup> m_inputs;
    SmartRef<PropertyGroup> m_outputs;

private:
    template <class Value, class Output>
    static void store(const Value& value, Output& output)
    {
        output = value;
    }
    template <class Value, std::size_t count, class... Output>
    static void store(const std::array<Value, count>& values, Output&... outputs)
    {
        std::size_t next = 0;
        ((outputs = values[next++]), ...);
    }
};

} // namespace helvantine
