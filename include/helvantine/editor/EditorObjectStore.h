// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/RefCount.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/UniqueId.h>

#include <map>

namespace helvantine
{

/// Counted objects that an editor keeps with a document, by id. Nothing here is saved.
class HELVANTINE_FX_API EditorObjectStore
{
public:
    EditorObjectStore();
    virtual ~EditorObjectStore();

    /// Keeps the object in place of an earlier one; null clears the entry.
    void addObject(const UniqueId& id, IRefCount* object);

    /// Null for an id that names nothing. Borrowed.
    IRefCount* getObject(const UniqueId& id) const;

private:
    std::map<UniqueId, SmartRef<IRefCount>> m_objects;
};

} // namespace helvantine
