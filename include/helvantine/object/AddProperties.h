// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyBase.h>

#include <initializer_list>

namespace helvantine
{

/// Registers properties with their context and puts them into a group of it, in this order.
inline void addProperties(PropertyGroup& group, std::initializer_list<PropertyBase*> properties)
{
    for (PropertyBase* property : properties) {
        group.m_context->addProperty(property);
        group.addProperty(property);
    }
}

} // namespace helvantine
