// SPDX-License-Identifier: MIT
#include <helvantine/editor/EditorObjectStore.h>

namespace helvantine
{

EditorObjectStore::EditorObjectStore() = default;

EditorObjectStore::~EditorObjectStore() = default;

void EditorObjectStore::addObject(const UniqueId& id, IRefCount* object)
{
    m_objects[id] = object;
}

IRefCount* EditorObjectStore::getObject(const UniqueId& id) const
{
    const auto found = m_objects.find(id);
    return found != m_objects.end() ? found->second.get() : nullptr;
}

} // namespace helvantine
