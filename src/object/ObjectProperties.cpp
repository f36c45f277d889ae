// SPDX-License-Identifier: MIT
// Properties by name.
#include <helvantine/object/Object.h>

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/NearestNames.h>
#include <helvantine/core/Report.h>
#include <helvantine/object/PropertyBase.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace helvantine
{

namespace
{

constexpr const char* s_module = "property";

struct Found
{
    PropertyBase* property;
    std::string fullName; ///< with the group's, if it is in one
};

/// All properties of an object: those in groups in the groups' order, then the rest.
std::vector<Found> collect(const PropertyContext& context)
{
    std::vector<Found> result;
    std::vector<const PropertyBase*> grouped;
    for (const auto* groups : {&context.m_inputGroups, &context.m_outputGroups}) {
        for (const SmartRef<PropertyGroup>& group : *groups) {
            for (PropertyBase* property : group->m_properties) {
                result.push_back({property, group->m_name + '.' + property->m_name});
                grouped.push_back(property);
            }
        }
    }
    for (const auto& [id, property] : context.m_properties) {
        if (std::find(grouped.begin(), grouped.end(), property) == grouped.end())
            result.push_back({property, property->m_name});
    }
    return result;
}

std::vector<Found> findFitting(const std::vector<Found>& all, std::string_view name)
{
    std::vector<Found> fitting;
    for (const Found& found : all) {
        const bool fits = found.property->m_name == name || found.fullName == name;
        const bool isNew = std::none_of(fitting.begin(), fitting.end(),
                                        [&](const Found& other) { return other.property == found.property; });
        if (fits && isNew)
            fitting.push_back(found);
    }
    return fitting;
}

std::string describeAbsence(const std::vector<Found>& all, std::string_view name)
{
    std::vector<std::string> names;
    for (const Found& found : all)
        names.push_back(name.find('.') != name.npos ? found.fullName : found.property->m_name);
    return "has no property '" + std::string(name) + '\'' + describeNearestNames(name, names);
}

std::string describeAmbiguity(const std::vector<Found>& fitting, std::string_view name)
{
    std::string text = "has " + std::to_string(fitting.size()) + " properties '" + std::string(name) + "':";
    for (const Found& found : fitting)
        text += (&found == &fitting.front() ? " '" : ", '") + found.fullName + '\'';
    return text;
}

/// Null, with words, if a value doesn't fit.
std::unique_ptr<Keyframe> makeCurve(PropertyBase& property, std::uint32_t mode,
                                    const std::vector<TimedValue>& keys, std::string& whyNot)
{
    std::unique_ptr<Keyframe> curve(property.createKeyframe());
    if (!curve) {
        whyNot = std::string("is a ") + getKindName(property.m_type) + ", which has no curve";
        return nullptr;
    }
    for (const auto& [time, value] : keys) {
        std::unique_ptr<Key> key(curve->createKey());
        key->time = time;
        key->mode = mode;
        if (!std::isfinite(time))
            whyNot = "has a key whose time is no finite number";
        if (!std::isfinite(time) || !value.getKeyValues(property.m_type, key->values, whyNot))
            return nullptr;
        curve->addKey(key.release(), false);
    }
    curve->sort();
    return curve;
}

} // namespace

std::string Object::describe() const
{
    const std::string name = getTypeInfo()->name;
    return m_name.empty() ? name : name + " '" + m_name + '\'';
}

PropertyBase* Object::findProperty(std::string_view name) const
{
    const std::vector<Found> all = collect(*this);
    const std::vector<Found> fitting = findFitting(all, name);
    if (fitting.size() == 1)
        return fitting.front().property;
    reportProblem(s_module,
                  describe() + ' ' +
                      (fitting.empty() ? describeAbsence(all, name) : describeAmbiguity(fitting, name)));
    return nullptr;
}

void Object::reportKind(const PropertyBase& property, std::uint32_t wanted) const
{
    reportProblem(s_module, describe() + ": property '" + property.m_name + "' is a " +
                                getKindName(property.m_type) + " and not a " + getKindName(wanted));
}

bool Object::setProperty(std::string_view name, const PropertyValue& value)
{
    PropertyBase* property = findProperty(name);
    std::string whyNot;
    if (!property || value.assignTo(*property, whyNot))
        return property != nullptr;
    reportProblem(s_module, describe() + ": property '" + property->m_name + "' " + whyNot);
    return false;
}

bool Object::animateProperty(std::string_view name, std::uint32_t mode, const std::vector<TimedValue>& keys,
                             KeyframeOOR outside)
{
    PropertyBase* property = findProperty(name);
    if (!property)
        return false;
    std::string whyNot;
    std::unique_ptr<Keyframe> curve = makeCurve(*property, mode, keys, whyNot);
    if (!curve) {
        reportProblem(s_module, describe() + ": property '" + property->m_name + "' " + whyNot);
        return false;
    }
    curve->setPreOOR(outside);
    curve->setPostOOR(outside);
    property->setKeyframe(curve.release());
    return true;
}

} // namespace helvantine
