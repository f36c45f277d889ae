// SPDX-License-Identifier: MIT
#include <helvantine/object/AnimatedProperties.h>

#include <helvantine/object/Property.h>

namespace helvantine
{

namespace
{

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

} // namespace

void AnimatedProperties::onCurveChanged(Keyframe* curve)
{
    ++m_edits;
    if (curve)
        curve->setEditCount(&m_edits);
}

void AnimatedProperties::forget(const PropertyBase* property)
{
    ++m_edits;
    for (Entry& entry : m_entries) {
        if (entry.property == property)
            entry = Entry();
    }
}

void AnimatedProperties::update(PropertyContext& context, float time)
{
    if (m_knownEdits != m_edits)
        rebuild(context);
    const std::uint32_t edits = m_edits;
    Entry* const begin = m_entries.data();
    Entry* const end = begin + m_entries.size();
    for (Entry* entry = begin; entry != end; ++entry) {
        if (entry->cubic.holds(time)) {
            auto& property = static_cast<FloatProperty&>(*entry->property);
            const float value = entry->cubic.evaluate(time);
            if (property.m_value == value)
                continue;
            property.m_value = value;
            context.onPropertyChanged(&property);
        } else {
            evaluate(*entry, time);
        }
        if (m_edits != edits) // the list may be another one by now
            return updateFrom(static_cast<std::size_t>(entry - begin) + 1, time);
    }
}

/// The rest of a tick in which an edit happened.
void AnimatedProperties::updateFrom(std::size_t first, float time)
{
    for (std::size_t i = first; i < m_entries.size(); ++i)
        evaluate(m_entries[i], time);
}

void AnimatedProperties::evaluate(Entry& entry, float time)
{
    PropertyBase* property = entry.property;
    if (!property)
        return;
    Keyframe* curve = property->m_keyframe.get(); // null if it was taken away in this tick
    if (!curve || curve->getComponentCount() < getKindComponentCount(property->m_type))
        return;
    const float* components = curve->evaluate(time);
    if (!components)
        return;
    if (property->m_type == KindFloat)
        entry.cubic = curve->getCubic();
    assignComponents(*property, components); // the entry may be gone afterwards
}

void AnimatedProperties::rebuild(const PropertyContext& context)
{
    m_knownEdits = m_edits;
    m_entries.clear();
    for (const auto& [id, property] : context.m_properties) {
        if (property->m_keyframe)
            m_entries.push_back({property, {}});
    }
}

} // namespace helvantine
