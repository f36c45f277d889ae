// SPDX-License-Identifier: MIT
#include <helvantine/core/TypedObject.h>

namespace helvantine
{

constinit const TypeInfo TypedObject::m_typeInfo{"TypedObject", nullptr};

const TypeInfo* TypedObject::getTypeInfo() const
{
    return &m_typeInfo;
}

bool TypedObject::isOfType(const TypeInfo* type) const
{
    for (const TypeInfo* own = getTypeInfo(); own; own = own->parent) {
        if (own == type)
            return true;
    }
    return false;
}

} // namespace helvantine
