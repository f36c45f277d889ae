// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyContext.h>

#include "object/AddedCheck.h"

#include <helvantine/object/PropertyBase.h>

#include <algorithm>
#include <functional>

namespace helvantine
{

namespace
{

using Groups = std::vector<SmartRef<PropertyGroup>>;

void removeGroup(Groups& groups, const PropertyGroup* group)
{
    const auto found = std::find_if(groups.begin(), groups.end(), [&](const SmartRef<PropertyGroup>& entry) {
        return entry->m_id == group->m_id;
    });
    if (found != groups.end())
        groups.erase(found);
}

/// The first group that fits, input groups before output groups.
template <class Predicate>
PropertyGroup* findGroupWhere(const Groups& inputs, const Groups& outputs, Predicate fits)
{
    for (const Groups* groups : {&inputs, &outputs}) {
        for (const SmartRef<PropertyGroup>& group : *groups) {
            if (fits(*group))
                return group.get();
        }
    }
    return nullptr;
}

} // namespace

PropertyContext::PropertyContext() = default;

PropertyContext::~PropertyContext() = default;

void PropertyContext::addProperty(PropertyBase* property)
{
    if (!canAdd(property, "property"))
        return;
    m_properties[property->m_id] = property;
    m_animated.onPropertiesChanged();
}

void PropertyContext::removeProperty(PropertyBase* property)
{
    m_properties.erase(property->m_id);
    m_animated.forget(property);
}

PropertyBase* PropertyContext::findProperty(const UniqueId& id) const
{
    const auto found = m_properties.find(id);
    return found != m_properties.end() ? found->second : nullptr;
}

void PropertyContext::changePropertyId(const UniqueId& oldId, const UniqueId& newId)
{
    auto entry = m_properties.extract(oldId);
    if (entry.empty())
        return;
    entry.mapped()->m_id = newId;
    m_properties[newId] = entry.mapped();
    m_animated.onPropertiesChanged();
}

void PropertyContext::addInputGroup(PropertyGroup* group)
{
    if (!canAdd(group, "input group"))
        return;
    m_inputGroups.emplace_back(group);
    std::stable_sort(m_inputGroups.begin(), m_inputGroups.end(),
                     [](const SmartRef<PropertyGroup>& a, const SmartRef<PropertyGroup>& b) {
                         return a->m_name < b->m_name;
                     });
}

void PropertyContext::addOutputGroup(PropertyGroup* group)
{
    if (!canAdd(group, "output group"))
        return;
    m_outputGroups.emplace_back(group);
}

void PropertyContext::removeInputGroup(PropertyGroup* group)
{
    removeGroup(m_inputGroups, group);
}

void PropertyContext::removeOutputGroup(PropertyGroup* group)
{
    removeGroup(m_outputGroups, group);
}

PropertyGroup* PropertyContext::findGroup(const UniqueId& id) const
{
    return findGroupWhere(m_inputGroups, m_outputGroups,
                          [&](const PropertyGroup& group) { return group.m_id == id; });
}

PropertyGroup* PropertyContext::findGroup(const char* name) const
{
    return findGroupWhere(m_inputGroups, m_outputGroups,
                          [&](const PropertyGroup& group) { return group.m_name == name; });
}

void PropertyContext::addListener(const UniqueId& property, PropertyListener* listener)
{
    m_listeners[property].push_back(listener);
}

template <class Predicate>
void PropertyContext::removeListenersWhere(Predicate isMeant)
{
    for (auto& [id, listeners] : m_listeners) {
        const auto found = std::find_if(listeners.begin(), listeners.end(), isMeant);
        if (found == listeners.end())
            continue;
        // Lists that may be walked right now keep their places until the walk is over.
        std::replace_if(found, listeners.end(), isMeant, nullptr);
        m_listenersRemoved = true;
    }
    if (m_tellingDepth == 0)
        dropRemovedListeners();
}

void PropertyContext::removeListener(PropertyListener* listener)
{
    removeListenersWhere([&](const PropertyListener* entry) { return entry == listener; });
}

void PropertyContext::removeListeners(const std::vector<PropertyListener*>& listeners)
{
    removeListenersWhere([&](const PropertyListener* entry) {
        return std::binary_search(listeners.begin(), listeners.end(), entry, std::less<>());
    });
}

void PropertyContext::dropRemovedListeners()
{
    if (!m_listenersRemoved)
        return;
    m_listenersRemoved = false;
    for (auto entry = m_listeners.begin(); entry != m_listeners.end();) {
        std::erase(entry->second, nullptr);
        entry = entry->second.empty() ? m_listeners.erase(entry) : std::next(entry);
    }
}

void PropertyContext::tellListeners(PropertyBase* property)
{
    const auto found = m_listeners.find(property->m_id);
    if (found == m_listeners.end())
        return;
    ++m_tellingDepth;
    // By index and with a fresh size: a listener may add others.
    for (std::size_t i = 0; i < found->second.size(); ++i) {
        if (PropertyListener* listener = found->second[i])
            listener->onPropertyChanged(property);
    }
    if (--m_tellingDepth == 0)
        dropRemovedListeners();
}

void PropertyContext::updateProperties(float time)
{
    m_animated.update(*this, time);
}

void PropertyContext::onCurveChanged(Keyframe* curve)
{
    m_animated.onCurveChanged(curve);
}

} // namespace helvantine
