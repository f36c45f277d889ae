// SPDX-License-Identifier: MIT
#include <helvantine/object/Property.h>

#include <helvantine/core/Text.h>

#include <cstring>
#include <initializer_list>
#include <limits>

namespace helvantine
{

namespace
{

template <class T>
constexpr unsigned s_componentCount = 1;
template <>
constexpr unsigned s_componentCount<Vec2> = 2;
template <>
constexpr unsigned s_componentCount<Vec3> = 3;
template <>
constexpr unsigned s_componentCount<Vec4> = 4;

std::string formatComponents(std::initializer_list<float> components)
{
    std::string text;
    for (const float component : components) {
        if (!text.empty())
            text += ", ";
        appendFloat(text, component);
    }
    return text;
}

std::string format(float value)
{
    return formatComponents({value});
}

std::string format(std::int32_t value)
{
    std::string text;
    appendInt(text, value);
    return text;
}

std::string format(bool value)
{
    return value ? "1" : "0";
}

std::string format(const std::string& value)
{
    return value;
}

std::string format(const Vec2& value)
{
    return formatComponents({value.x, value.y});
}

std::string format(const Vec3& value)
{
    return formatComponents({value.x, value.y, value.z});
}

std::string format(const Vec4& value)
{
    return formatComponents({value.x, value.y, value.z, value.w});
}

float parseFloat(const char* text)
{
    return static_cast<float>(parseDouble(text));
}

/// Reads the number in front of the next comma and steps behind that; 0 once the text has ended.
float parseComponent(const char*& text)
{
    if (!text)
        return 0.0f;
    const float value = parseFloat(text);
    text = std::strchr(text, ',');
    if (text)
        ++text;
    return value;
}

void parse(const char* text, float& value)
{
    value = parseFloat(text);
}

void parse(const char* text, std::int32_t& value)
{
    value = parseInt(text);
}

void parse(const char* text, bool& value)
{
    value = parseInt(text) != 0;
}

void parse(const char* text, std::string& value)
{
    value = text ? text : "";
}

void parse(const char* text, Vec2& value)
{
    value.x = parseComponent(text);
    value.y = parseComponent(text);
}

void parse(const char* text, Vec3& value)
{
    value.x = parseComponent(text);
    value.y = parseComponent(text);
    value.z = parseComponent(text);
}

void parse(const char* text, Vec4& value)
{
    value.x = parseComponent(text);
    value.y = parseComponent(text);
    value.z = parseComponent(text);
    value.w = parseComponent(text);
}

} // namespace

template <class T>
void ValueProperty<T>::copyTo(PropertyBase* target, bool notify, bool force) const
{
    auto* other = static_cast<ValueProperty*>(target);
    if (!force && other->m_hasValue && other->m_value == m_value)
        return;
    other->m_hasValue = true;
    other->m_value = m_value;
    if (notify)
        other->m_context->onPropertyChanged(other);
}

template <class T>
unsigned ValueProperty<T>::getComponentCount() const
{
    return s_componentCount<T>;
}

template <class T>
std::string ValueProperty<T>::toString() const
{
    return format(m_value);
}

template <class T>
void ValueProperty<T>::fromString(const char* text)
{
    T value;
    parse(text, value);
    assign(value);
}

template class ValueProperty<float>;
template class ValueProperty<std::int32_t>;
template class ValueProperty<bool>;
template class ValueProperty<Vec2>;
template class ValueProperty<Vec3>;
template class ValueProperty<Vec4>;
template class ValueProperty<std::string>;

StringProperty::StringProperty(PropertyContext* context, std::uint32_t type, const char* name,
                               const char* text)
    : ValueProperty<std::string>(context, type, name)
{
    setDefault(text);
    m_context->addProperty(this);
}

void StringProperty::assign(std::string_view text)
{
    if (m_hasValue && m_value == text)
        return;
    m_hasValue = true;
    m_value = text;
    m_context->onPropertyChanged(this);
}

std::int32_t truncateToInt(float value)
{
    // Both bounds are exact floats; the comparison is false for NaN.
    if (value >= -2147483648.0f && value < 2147483648.0f)
        return static_cast<std::int32_t>(value);
    return std::numeric_limits<std::int32_t>::min();
}

} // namespace helvantine
