// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

namespace helvantine
{

/// A class's type record. Records are compared by address, so each class has exactly one.
struct TypeInfo
{
    const char* name = nullptr;       ///< constant text
    const TypeInfo* parent = nullptr; ///< the base class's record; null at the top of the chain
};

/// Root of every class that carries its own type record.
///
/// A derived class owns a static `m_typeInfo` whose parent is its base's record, and overrides getTypeInfo.
/// The table of virtual functions starts with getTypeInfo and isOfType, and derived classes append to it
/// right there. So there is no virtual destructor here: objects are deleted through IRefCount.
class HELVANTINE_CORE_API TypedObject
{
public:
    virtual const TypeInfo* getTypeInfo() const;
    /// True if `type` is the object's own record or one above it.
    virtual bool isOfType(const TypeInfo* type) const;

    static const TypeInfo m_typeInfo;

protected:
    TypedObject() = default;
    TypedObject(const TypedObject&) = default;
    TypedObject& operator=(const TypedObject&) = default;
    ~TypedObject() = default;
};

} // namespace helvantine
