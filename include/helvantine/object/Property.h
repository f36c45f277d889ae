// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vector.h>
#include <helvantine/object/PropertyBase.h>

#include <string_view>

namespace helvantine
{

/// The kind that stands for all that hold a T.
template <class T>
inline constexpr std::uint32_t s_kindOf = KindFloat;
template <>
inline constexpr std::uint32_t s_kindOf<std::int32_t> = KindInt;
template <>
inline constexpr std::uint32_t s_kindOf<bool> = KindBool;
template <>
inline constexpr std::uint32_t s_kindOf<Vec2> = KindVec2;
template <>
inline constexpr std::uint32_t s_kindOf<Vec3> = KindVec3;
template <>
inline constexpr std::uint32_t s_kindOf<Vec4> = KindVec4;
template <>
inline constexpr std::uint32_t s_kindOf<std::string> = KindString;

/// A property that holds a T: float, int32_t, bool, Vec2, Vec3, Vec4 or std::string.
template <class T>
class HELVANTINE_FX_API ValueProperty : public PropertyBase
{
public:
    static constexpr std::uint32_t s_kind = s_kindOf<T>;

    ValueProperty(PropertyContext* context, std::uint32_t type, const char* name)
        : PropertyBase(context, type, name)
    {
    }
    ~ValueProperty() override { m_context->removeProperty(this); }

    /// Stores and tells, unless the property already holds an equal value.
    ValueProperty& operator=(const T& value)
    {
        assign(value);
        return *this;
    }
    void assign(const T& value)
    {
        if (setDefault(value))
            m_context->onPropertyChanged(this);
    }

    /// Stores without telling; true if the value was new. For constructors.
    bool setDefault(const T& value)
    {
        if (m_hasValue && m_value == value)
            return false;
        m_hasValue = true;
        m_value = value;
        return true;
    }

    void copyTo(PropertyBase* target, bool notify, bool force) const override;
    unsigned getComponentCount() const override;
    std::string toString() const override;
    void fromString(const char* text) override;

    T m_value{};
};

/// A text, or the text of a resource's id. Registers itself.
class HELVANTINE_FX_API StringProperty : public ValueProperty<std::string>
{
public:
    StringProperty(PropertyContext* context, std::uint32_t type, const char* name, const char* text = "");

    StringProperty& operator=(std::string_view text)
    {
        assign(text);
        return *this;
    }
    /// As the base's, without a string made where the text is the same.
    void assign(std::string_view text);
};

using FloatProperty = ValueProperty<float>;
using IntProperty = ValueProperty<std::int32_t>; ///< integers and enumerations
using BoolProperty = ValueProperty<bool>;
using Vec2Property = ValueProperty<Vec2>;
using Vec3Property = ValueProperty<Vec3>;
using Vec4Property = ValueProperty<Vec4>; ///< 4-vectors, rotations and colours

// The mark is repeated: a template takes on the visibility of its arguments.
extern template class HELVANTINE_FX_API ValueProperty<float>;
extern template class HELVANTINE_FX_API ValueProperty<std::int32_t>;
extern template class HELVANTINE_FX_API ValueProperty<bool>;
extern template class HELVANTINE_FX_API ValueProperty<Vec2>;
extern template class HELVANTINE_FX_API ValueProperty<Vec3>;
extern template class HELVANTINE_FX_API ValueProperty<Vec4>;
extern template class ValueProperty<std::string>;

/// The property as one of the classes above, or null if its kind is stored in another one.
template <class T>
T* castTo(PropertyBase* property)
{
    return property && isSameStorage(property->m_type, T::s_kind) ? static_cast<T*>(property) : nullptr;
}
template <class T>
const T* castTo(const PropertyBase* property)
{
    return castTo<T>(const_cast<PropertyBase*>(property));
}

/// Truncation toward zero; what no 32-bit integer holds, NaN included, gives -2147483648.
HELVANTINE_FX_API std::int32_t truncateToInt(float value);

} // namespace helvantine
