// SPDX-License-Identifier: MIT
#include <helvantine/object/Object.h>

#include "object/AddedCheck.h"

#include <algorithm>

namespace helvantine
{

namespace
{

void appendTree(Object* object, std::vector<SmartRef<Object>>& result)
{
    result.emplace_back(object);
    for (const SmartRef<Object>& child : object->m_children)
        appendTree(child.get(), result);
}

} // namespace

std::uint32_t Object::s_timelineEdits = 0;

Object::Object() : m_id(generateUniqueId()) {}

Object::~Object() = default;

Object* Object::findObject(const UniqueId& id) const
{
    if (m_id == id)
        return const_cast<Object*>(this);
    for (const SmartRef<Object>& child : m_children) {
        if (Object* found = child->findObject(id))
            return found;
    }
    return nullptr;
}

void Object::update(FxUpdateContext&) {}

void Object::render(FxRenderContext&) {}

void Object::addObject(Object* child, int index)
{
    if (!canAdd(child, "child", m_name))
        return;
    const auto count = static_cast<int>(m_children.size());
    const bool inside = index >= 0 && index < count;
    m_children.emplace(inside ? m_children.begin() + index : m_children.end(), child);
    child->setParent(this);
}

void Object::deleteObject(const UniqueId& id)
{
    const auto found = std::find_if(m_children.begin(), m_children.end(),
                                    [&](const SmartRef<Object>& child) { return child->m_id == id; });
    if (found == m_children.end())
        return;
    (*found)->setParent(nullptr);
    m_children.erase(found);
}

PropertyBase* Object::findPropertyRecursive(const UniqueId& id) const
{
    if (PropertyBase* property = findProperty(id))
        return property;
    for (const SmartRef<Object>& child : m_children) {
        if (PropertyBase* property = child->findPropertyRecursive(id))
            return property;
    }
    return nullptr;
}

std::vector<SmartRef<Object>> Object::getAllObjects()
{
    std::vector<SmartRef<Object>> result;
    appendTree(this, result);
    return result;
}

void Object::getObjectsOfType(const TypeInfo* type, std::vector<SmartRef<Object>>& result, int frame,
                              bool recursive) const
{
    for (const SmartRef<Object>& child : m_children) {
        if (!child->m_enabled || !child->isInWindow(subtractFrames(frame, child->getRelativeStartFrame())))
            continue;
        if (child->isOfType(type))
            result.push_back(child);
        if (recursive)
            child->getObjectsOfType(type, result, frame, recursive);
    }
}

void Object::setStart(int frame)
{
    if (m_start != frame)
        noteTimelineEdit();
    m_start = frame;
}

void Object::setEnd(int frame)
{
    if (m_end != frame)
        noteTimelineEdit();
    m_end = frame;
}

void Object::setParent(Object* parent)
{
    m_parent = parent;
    noteTimelineEdit();
}

bool Object::isInside(const Object& tree) const
{
    const Object* object = this;
    while (object && object != &tree)
        object = object->m_parent;
    return object != nullptr;
}

int Object::getRelativeStartFrame() const
{
    std::int32_t start = 0;
    for (const Object* object = this; object; object = object->m_parent)
        start = addFrames(start, object->m_start);
    return start;
}

} // namespace helvantine
