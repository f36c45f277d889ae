// SPDX-License-Identifier: MIT
#include <helvantine/object/CurveLanes.h>

#include <helvantine/object/PropertyBase.h>

#include <algorithm>

namespace helvantine
{

void CurveLanes::set(unsigned lane, const Keyframe::Cubic& cubic)
{
    origins[lane] = cubic.origin;
    rates[lane] = cubic.rate;
    for (int power = 0; power < 4; ++power)
        powers[power][lane] = cubic.powers[power];
}

CurveTrack::CurveTrack(PropertyBase* property, Segments& segments)
    : m_property(property), m_components(getKindComponentCount(property->m_type)), m_first(segments.size()),
      m_next(m_first)
{
    property->m_keyframe->appendSegments(m_components, segments);
    m_last = segments.size();
    if (!property->m_keyframe->isPlain()) // there is never anything to enter
        std::swap(m_begin, m_end);
}

void CurveTrack::enter(float time, const Segments& segments, CurveLanes& lanes, unsigned index)
{
    const Keyframe::Segment* segment = find(time, segments);
    if (!segment)
        return enterFromCurve(time, lanes, index);
    for (unsigned c = 0; c < m_components; ++c)
        lanes.set(index + c, segment[c].getCubic());
    m_begin = segment->begin;
    m_end = segment->end;
    lanes.ways[index] = lanes.isForFloats ? CurveLanes::Way::Lane : CurveLanes::Way::Lanes;
}

/// Beside the keys, or in a segment that is eased.
void CurveTrack::enterFromCurve(float time, CurveLanes& lanes, unsigned index)
{
    Keyframe& curve = *m_property->m_keyframe;
    curve.evaluate(time);
    for (unsigned c = 0; c < m_components; ++c) {
        const Keyframe::Cubic cubic = curve.getCubic(c);
        lanes.set(index + c, cubic);
        m_begin = cubic.begin;
        m_end = cubic.end;
    }
    if (!holds(time))
        lanes.ways[index] = CurveLanes::Way::AskCurve;
    else
        lanes.ways[index] = lanes.isForFloats ? CurveLanes::Way::Lane : CurveLanes::Way::Lanes;
}

/// The segment that holds at a time, or null.
const Keyframe::Segment* CurveTrack::find(float time, const Segments& segments)
{
    std::size_t found = m_next;
    if (found == m_last || !segments[found].holds(time)) { // a seek
        const auto at = [&](std::size_t position) {
            return segments.begin() + static_cast<std::ptrdiff_t>(position);
        };
        const auto later =
            std::upper_bound(at(m_first), at(m_last), time,
                             [](float t, const Keyframe::Segment& segment) { return t < segment.begin; });
        if (later == at(m_first))
            return nullptr;
        found = static_cast<std::size_t>(later - segments.begin()) - m_components;
        if (!segments[found].holds(time))
            return nullptr;
    }
    m_next = found + m_components;
    return &segments[found];
}

} // namespace helvantine
