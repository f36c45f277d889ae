// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyContext.h>

#include <helvantine/object/Property.h>

#include <algorithm>
#include <functional>
#include <typeinfo>

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

/// Assigns what a curve yields, by the property's kind.
void assignComponents(PropertyBase& property, const float* c)
{
    switch (property.m_type) {
    case KindFloat:
        static_cast<FloatProperty&>(property).assign(c[0]);
        break;
    case KindInt:
        static_cast<IntProperty&>(property).assign(truncateToInt(c[0]));
        break;
    case KindVec2:
        static_cast<Vec2Property&>(property).assign(Vec2{c[0], c[1]});
        break;
    case KindVec3:
        static_cast<Vec3Property&>(property).assign(Vec3{c[0], c[1], c[2]});
        break;
    case KindVec4:
    case KindRotation:
    case KindColor:
        static_cast<Vec4Property&>(property).assign(Vec4{c[0], c[1], c[2], c[3]});
        break;
    default:
        break; // a foreign curve on a kind without curves has no effect
    }
}

/// Asks for the memory where a float's value lies: behind what all properties have.
void prefetchValue(const PropertyBase* property)
{
    __builtin_prefetch(reinterpret_cast<const char*>(property) + sizeof(PropertyBase) - 1, 1);
}

} // namespace

PropertyContext::~PropertyContext() = default;

void PropertyContext::addProperty(PropertyBase* property)
{
    m_properties[property->m_id] = property;
    invalidateAnimation();
}

void PropertyContext::removeProperty(PropertyBase* property)
{
    m_properties.erase(property->m_id);
    for (Animated& animated : m_animated) {
        if (animated.property == property)
            animated.property = nullptr;
    }
    invalidateAnimation();
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
    invalidateAnimation();
}

void PropertyContext::addInputGroup(PropertyGroup* group)
{
    m_inputGroups.emplace_back(group);
    std::stable_sort(m_inputGroups.begin(), m_inputGroups.end(),
                     [](const SmartRef<PropertyGroup>& a, const SmartRef<PropertyGroup>& b) {
                         return a->m_name < b->m_name;
                     });
}

void PropertyContext::addOutputGroup(PropertyGroup* group)
{
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

void PropertyContext::onPropertyChanged(PropertyBase* property)
{
    if (m_listeners.empty()) // nearly always, and the id needn't be looked at
        return;
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
    constexpr std::ptrdiff_t ahead = 8; // while the one is told, the others' properties are on their way
    if (m_animatedStale)
        rebuildAnimated();
    if (m_curveEdits != Keyframe::getEditCount())
        forgetCubics();
    const double now = time;
    Animated* const end = m_animated.data() + m_animated.size();
    for (Animated* next = m_animated.data(); next != end; ++next) {
        Animated& animated = *next;
        prefetchValue(next[std::min<std::ptrdiff_t>(ahead, end - next - 1)].property);
        const Keyframe::Cubic& cubic = animated.cubic;
        // What listeners do during the walk shows in the rest of it.
        if (!(now >= cubic.begin && now < cubic.end && areCubicsCurrent() && animated.property)) {
            updateProperty(animated, time);
            continue;
        }
        const float u = static_cast<float>((now - cubic.begin) * cubic.rate);
        const float value = cubic.c[0] + u * (cubic.c[1] + u * (cubic.c[2] + u * cubic.c[3]));
        auto& property = static_cast<FloatProperty&>(*animated.property);
        if (property.m_value != value) { // it has one since the cubic was taken
            property.m_value = value;
            onPropertyChanged(&property);
        }
    }
}

void PropertyContext::forgetCubics()
{
    for (Animated& animated : m_animated)
        animated.cubic = {};
    m_curveEdits = Keyframe::getEditCount();
}

/// Through the curve, which knows everything.
void PropertyContext::updateProperty(Animated& animated, float time)
{
    PropertyBase* property = animated.property;
    if (!property)
        return;
    // A listener may have replaced curves since the list was made; then only the property knows.
    Keyframe* curve = m_animatedStale ? property->m_keyframe.get() : animated.curve;
    if (!curve || curve->getComponentCount() < getKindComponentCount(property->m_type))
        return;
    const float* components = curve->evaluate(time);
    if (!components)
        return;
    animated.cubic = {};
    if (areCubicsCurrent() && property->m_type == KindFloat && property->m_context == this &&
        typeid(*curve) == typeid(Keyframe))
        curve->getCubic(animated.cubic);
    assignComponents(*property, components);
}

void PropertyContext::rebuildAnimated()
{
    m_animatedStale = false;
    m_animated.clear();
    for (const auto& [id, property] : m_properties) {
        if (property->m_keyframe)
            m_animated.push_back({property, property->m_keyframe.get(), {}});
    }
}

} // namespace helvantine
