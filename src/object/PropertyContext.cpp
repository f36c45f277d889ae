// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyContext.h>

#include "object/AddedCheck.h"
#include "object/ChangeWalk.h"

#include <helvantine/object/PropertyBase.h>
#include <helvantine/object/PropertyLink.h>

#include <algorithm>
#include <iterator>
#include <utility>

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
    appendListener(property, listener);
}

/// Returns the listener's place in the list of that property.
std::size_t PropertyContext::appendListener(const UniqueId& property, PropertyListener* listener)
{
    std::vector<PropertyListener*>& listeners = m_listeners[property];
    listeners.push_back(listener);
    ++m_listenerCount;
    return listeners.size() - 1;
}

void PropertyContext::removeListener(PropertyListener* listener)
{
    bool isFound = false;
    for (auto& [id, listeners] : m_listeners) {
        for (PropertyListener*& entry : listeners) {
            if (entry != listener)
                continue;
            // Lists that may be walked right now keep their places until the walk is over.
            entry = nullptr;
            --m_listenerCount;
            ++m_gapCount;
            isFound = true;
        }
    }
    if (m_tellingDepth > 0)
        m_isListenerRemoved |= isFound;
    else if (isFound)
        closeGaps();
}

/// Takes out a link that registered itself, without a search. In long lists its place stays open until there are as
/// many open ones as others: dropping all links of a fan, in whichever order, takes time in proportion to them.
void PropertyContext::removeLink(const PropertyLink& link)
{
    constexpr std::size_t longList = 64;
    const auto found = m_listeners.find(link.m_source->m_id);
    if (found == m_listeners.end() || link.m_place >= found->second.size() ||
        found->second[link.m_place] != &link) // the source has got another id
        return removeListener(const_cast<PropertyLink*>(&link));
    std::vector<PropertyListener*>& listeners = found->second;
    listeners[link.m_place] = nullptr;
    --m_listenerCount;
    ++m_gapCount;
    if (m_tellingDepth > 0) {
        m_isListenerRemoved = true;
        return;
    }
    for (; !listeners.empty() && !listeners.back(); listeners.pop_back())
        --m_gapCount;
    if (listeners.empty())
        m_listeners.erase(found);
    if (m_gapCount > m_listenerCount || m_listenerCount < longList)
        closeGaps();
}

void PropertyContext::closeGaps()
{
    m_isListenerRemoved = false;
    if (std::exchange(m_gapCount, 0) == 0)
        return;
    for (auto entry = m_listeners.begin(); entry != m_listeners.end();) {
        std::vector<PropertyListener*>& listeners = entry->second;
        const auto gap = std::find(listeners.begin(), listeners.end(), nullptr);
        listeners.erase(std::remove(gap, listeners.end(), nullptr), listeners.end());
        for (std::size_t i = static_cast<std::size_t>(gap - listeners.begin()); i < listeners.size(); ++i) {
            if (auto* link = dynamic_cast<PropertyLink*>(listeners[i]))
                link->m_place = static_cast<std::uint32_t>(i);
        }
        entry = listeners.empty() ? m_listeners.erase(entry) : std::next(entry);
    }
}

void PropertyContext::onPropertyChanged(PropertyBase* property)
{
    if (m_listeners.empty()) // which is nearly always
        return;
    const auto found = m_listeners.find(property->m_id);
    if (found == m_listeners.end())
        return;
    ++m_tellingDepth;
    ChangeWalk::tell(*this, found->second, property);
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
