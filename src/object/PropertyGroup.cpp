// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyBase.h>

#include "object/AddedCheck.h"

#include <algorithm>
#include <string_view>

namespace helvantine
{

PropertyGroup::PropertyGroup(PropertyContext* context, const char* name)
    : PropertyGroup(context, name, generateUniqueId())
{
}

PropertyGroup::PropertyGroup(PropertyContext* context, const char* name, const UniqueId& id)
    : m_context(context), m_id(id), m_name(name)
{
}

void PropertyGroup::addProperty(PropertyBase* property)
{
    if (canAdd(property, "property", m_name))
        m_properties.push_back(property);
}

void PropertyGroup::removeProperty(PropertyBase* property)
{
    const auto found = std::find_if(m_properties.begin(), m_properties.end(),
                                    [&](const PropertyBase* entry) { return entry->m_id == property->m_id; });
    if (found != m_properties.end())
        m_properties.erase(found);
}

PropertyBase* PropertyGroup::findProperty(const UniqueId& id) const
{
    for (PropertyBase* property : m_properties) {
        if (property->m_id == id)
            return property;
    }
    return nullptr;
}

PropertyBase* PropertyGroup::findProperty(const char* name) const
{
    const std::string_view wanted(name); // measured once
    for (PropertyBase* property : m_properties) {
        if (property->m_name == wanted)
            return property;
    }
    return nullptr;
}

} // namespace helvantine
