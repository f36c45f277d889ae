// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/core/Vector.h>

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace helvantine
{

class PropertyBase;
class Resource;

/// A value for a property that is known by name: what its kind can take goes in, anything else is refused with words.
///
/// - A float takes any number, an integer a whole one, an enumeration that of a label or the label's text.
/// - Vectors, rotations and colours take as many numbers as they have components.
/// - A boolean takes true and false, a string a text, a resource reference a resource or the text of its id.
class HELVANTINE_FX_API PropertyValue
{
public:
    template <std::same_as<bool> T>
    PropertyValue(T value) : m_form(Form::Boolean), m_number(value ? 1 : 0)
    {
    }
    template <class T>
    requires(std::is_arithmetic_v<T> && !std::same_as<T, bool>) PropertyValue(T value)
        : m_number(static_cast<double>(value)), m_vector(static_cast<float>(value), 0, 0, 0)
    {
    }
    template <class T>
    requires std::is_enum_v<T> PropertyValue(T value) : PropertyValue(static_cast<std::int32_t>(value)) {}
    PropertyValue(float x, float y);
    PropertyValue(float x, float y, float z);
    PropertyValue(float x, float y, float z, float w);
    PropertyValue(const Vec2& value) : PropertyValue(value.x, value.y) {}
    PropertyValue(const Vec3& value) : PropertyValue(value.x, value.y, value.z) {}
    PropertyValue(const Vec4& value) : PropertyValue(value.x, value.y, value.z, value.w) {}
    PropertyValue(const char* text); ///< null is the empty text
    PropertyValue(const std::string& text);
    PropertyValue(std::string_view text);
    PropertyValue(const Resource* resource); ///< null names none

    /// Assigns and returns true; false changes nothing, and `whyNot` says why: "takes 3 numbers, not 2".
    bool assignTo(PropertyBase& property, std::string& whyNot) const;

    /// The numbers for a key of a curve, as many as the kind has components.
    bool getKeyValues(std::uint32_t kind, float (&values)[4], std::string& whyNot) const;

private:
    enum class Form : std::uint8_t
    {
        Boolean,
        Numbers,
        Text,
        ResourceId,
    };

    bool assignNumber(PropertyBase& property, std::string& whyNot) const;
    bool assignVector(PropertyBase& property, std::string& whyNot) const;
    bool assignText(PropertyBase& property, std::string& whyNot) const;
    bool findLabel(const PropertyBase& property, std::int32_t& index, std::string& whyNot) const;
    bool refuse(std::uint32_t kind, std::string& whyNot) const;
    std::string describe() const;

    Form m_form = Form::Numbers;
    unsigned m_count = 1;  ///< of the numbers
    double m_number = 0.0; ///< the first, exactly
    Vec4 m_vector;         ///< all of them
    std::string m_text;    ///< the id's text for a resource
};

} // namespace helvantine
