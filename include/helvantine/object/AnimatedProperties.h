// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Keyframe.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace helvantine
{

class PropertyBase;
class PropertyContext;

/// The animated properties of a context, in the order of their ids, for a tick to walk.
///
/// The curves of floats leave the cubic of the segment that they are in beside each other here. While the time
/// stays inside, a tick reads that and the value, and neither the curve nor the rest of the property.
/// Whatever makes the list or a cubic wrong counts as an edit. The next tick makes the list anew; what is left of
/// a tick in which an edit happens asks the properties themselves.
class AnimatedProperties
{
public:
    /// The properties of the context, or their ids, are others than before.
    void onPropertiesChanged() { ++m_edits; }
    /// A property has another curve, or null; the curve's own edits count from now on.
    void onCurveChanged(Keyframe* curve);
    /// A property leaves the context, maybe while it is told of a change.
    void forget(const PropertyBase* property);

    /// Evaluates the curves at that time, in seconds, and assigns what they yield. Whoever is told may do all
    /// that is said above. Allocates nothing unless there was an edit.
    void update(PropertyContext& context, float time);

private:
    struct Entry
    {
        PropertyBase* property = nullptr; ///< null where one left since the list was made
        Keyframe::Cubic cubic;            ///< holds for a float that has a value, or nowhere
    };

    void rebuild(const PropertyContext& context);
    void updateFrom(std::size_t first, float time);
    static void evaluate(Entry& entry, float time);

    std::vector<Entry> m_entries;
    std::uint32_t m_edits = 0;
    std::uint32_t m_knownEdits = 0; ///< those that the list has seen
};

} // namespace helvantine
