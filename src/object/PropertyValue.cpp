// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyValue.h>

#include <helvantine/core/NearestNames.h>
#include <helvantine/core/Text.h>
#include <helvantine/object/Property.h>
#include <helvantine/resource/Resource.h>

#include <cmath>
#include <limits>

namespace helvantine
{

namespace
{

/// What a property of the kind takes, as a message puts it.
std::string describeWanted(std::uint32_t kind)
{
    switch (kind) {
    case KindFloat:
        return "a number";
    case KindInt:
        return "a whole number";
    case KindBool:
        return "true or false";
    case KindString:
        return "a text";
    case KindResource:
        return "a resource or the text of its id";
    case KindEnum:
        return "one of its labels";
    default:
        return formatString("%u numbers", getKindComponentCount(kind));
    }
}

std::string describeLabels(const PropertyBase& property)
{
    std::string text;
    for (const auto& [index, label] : property.m_enumLabels)
        text += (text.empty() ? "" : ", ") + std::to_string(index) + " '" + label + '\'';
    return text;
}

bool isInt(double number)
{
    return number == std::trunc(number) && number >= std::numeric_limits<std::int32_t>::min() &&
           number <= std::numeric_limits<std::int32_t>::max();
}

} // namespace

PropertyValue::PropertyValue(float x, float y) : m_count(2), m_number(x), m_vector(x, y, 0, 0) {}

PropertyValue::PropertyValue(float x, float y, float z) : m_count(3), m_number(x), m_vector(x, y, z, 0) {}

PropertyValue::PropertyValue(float x, float y, float z, float w)
    : m_count(4), m_number(x), m_vector(x, y, z, w)
{
}

PropertyValue::PropertyValue(const char* text) : m_form(Form::Text), m_text(text ? text : "") {}

PropertyValue::PropertyValue(const std::string& text) : m_form(Form::Text), m_text(text) {}

PropertyValue::PropertyValue(std::string_view text) : m_form(Form::Text), m_text(text) {}

PropertyValue::PropertyValue(const Resource* resource)
    : m_form(Form::ResourceId), m_text(resource ? uniqueIdToString(resource->getId()) : std::string())
{
}

bool PropertyValue::assignTo(PropertyBase& property, std::string& whyNot) const
{
    switch (property.m_type) {
    case KindFloat:
    case KindInt:
    case KindEnum:
        return assignNumber(property, whyNot);
    case KindBool:
        if (m_form != Form::Boolean)
            return refuse(KindBool, whyNot);
        castTo<BoolProperty>(&property)->assign(m_number != 0.0);
        return true;
    case KindString:
    case KindResource:
        return assignText(property, whyNot);
    default:
        return assignVector(property, whyNot);
    }
}

bool PropertyValue::assignNumber(PropertyBase& property, std::string& whyNot) const
{
    std::int32_t label = 0;
    if (property.m_type == KindEnum && m_form == Form::Text) {
        if (!findLabel(property, label, whyNot))
            return false;
        castTo<IntProperty>(&property)->assign(label);
        return true;
    }
    if (m_form != Form::Numbers || m_count != 1 || (property.m_type != KindFloat && !isInt(m_number)))
        return refuse(property.m_type, whyNot);
    if (property.m_type == KindFloat) {
        castTo<FloatProperty>(&property)->assign(m_vector.x);
        return true;
    }
    const auto number = static_cast<std::int32_t>(m_number);
    if (property.m_type == KindEnum && !property.m_enumLabels.contains(number)) {
        whyNot = "has no label " + std::to_string(number) + ", but " + describeLabels(property);
        return false;
    }
    castTo<IntProperty>(&property)->assign(number);
    return true;
}

bool PropertyValue::findLabel(const PropertyBase& property, std::int32_t& index, std::string& whyNot) const
{
    for (const auto& [known, label] : property.m_enumLabels) {
        if (label == m_text) {
            index = known;
            return true;
        }
    }
    whyNot = "has no label '" + m_text + "', but " + describeLabels(property);
    return false;
}

bool PropertyValue::assignVector(PropertyBase& property, std::string& whyNot) const
{
    float values[4];
    if (!getKeyValues(property.m_type, values, whyNot))
        return false;
    if (auto* two = castTo<Vec2Property>(&property))
        two->assign(Vec2(values[0], values[1]));
    else if (auto* three = castTo<Vec3Property>(&property))
        three->assign(Vec3(values[0], values[1], values[2]));
    else if (auto* four = castTo<Vec4Property>(&property))
        four->assign(m_vector);
    return true;
}

bool PropertyValue::assignText(PropertyBase& property, std::string& whyNot) const
{
    const bool isResource = property.m_type == KindResource;
    if (m_form != Form::Text && !(isResource && m_form == Form::ResourceId))
        return refuse(property.m_type, whyNot);
    // A file's name is no id: it would name nothing, without a word.
    if (isResource && !m_text.empty() && stringToUniqueId(m_text.c_str()).isZero())
        return refuse(property.m_type, whyNot);
    castTo<StringProperty>(&property)->assign(m_text);
    return true;
}

bool PropertyValue::getKeyValues(std::uint32_t kind, float (&values)[4], std::string& whyNot) const
{
    if (m_form != Form::Numbers || m_count != getKindComponentCount(kind))
        return refuse(kind, whyNot);
    values[0] = m_vector.x;
    values[1] = m_vector.y;
    values[2] = m_vector.z;
    values[3] = m_vector.w;
    return true;
}

bool PropertyValue::refuse(std::uint32_t kind, std::string& whyNot) const
{
    whyNot = "takes " + describeWanted(kind) + ", not " + describe();
    return false;
}

std::string PropertyValue::describe() const
{
    switch (m_form) {
    case Form::Boolean:
        return m_number != 0.0 ? "true" : "false";
    case Form::Text:
        return "the text '" + m_text + '\'';
    case Form::ResourceId:
        return "a resource";
    default:
        return m_count == 1 ? formatString("%g", m_number) : formatString("%u numbers", m_count);
    }
}

} // namespace helvantine
