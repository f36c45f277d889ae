// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/CurveLanes.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <list>
#include <memory>
#include <memory_resource>
#include <vector>

namespace helvantine
{

class PropertyBase;
class PropertyContext;

/// The animated properties of a context, in the order of their ids, for a tick to walk.
///
/// A tick doesn't ask the curves. It reads lanes, which hold the segments that the time is in, four cubics at a time;
/// the lanes of all contexts lie beside each other, in the order of their first ticks. When a segment ends, the next
/// one is copied from the list of all segments. A curve is asked only beside its keys and where it is no cubic.
/// Whatever makes this wrong counts as an edit. The next tick makes all of it anew; what is left of a tick in which
/// an edit happens asks the curves.
class AnimatedProperties
{
public:
    AnimatedProperties();

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
    struct Curves
    {
        std::vector<CurveTrack> tracks; ///< of the properties of all lanes, in their order
        CurveTrack::Segments segments;  ///< the segments of all tracks, in their order
    };

    void rebuild(const PropertyContext& context);
    void addProperty(PropertyBase* property);
    void enterSegments(float time);
    void askCurves(std::size_t firstTrack, float time) const;

    std::pmr::list<CurveLanes> m_lanes;
    float m_begin = -std::numeric_limits<float>::infinity(); ///< all lanes hold from here
    float m_end = std::numeric_limits<float>::infinity();    ///< up to, but not at, here
    std::uint32_t m_edits = 0;
    std::uint32_t m_knownEdits = 0;   ///< those that the lanes have seen
    std::unique_ptr<Curves> m_curves; ///< null while nothing was animated
};

} // namespace helvantine
