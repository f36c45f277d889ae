// SPDX-License-Identifier: MIT
#include <helvantine/object/AnimatedProperties.h>

#include <helvantine/object/Property.h>

#include <algorithm>

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

/// Whether the property has a curve that fits it.
bool isAnimated(const PropertyBase& property)
{
    const Keyframe* curve = property.m_keyframe.get();
    const unsigned components = getKindComponentCount(property.m_type);
    return curve && components > 0 && curve->getComponentCount() >= components;
}

void askCurve(PropertyBase& property, float time)
{
    if (!isAnimated(property)) // any more
        return;
    if (const float* components = property.m_keyframe->evaluate(time))
        assignComponents(property, components);
}

/// Of all lanes: side by side, one tick's are read as one stream. Lives until the program ends, since objects may.
std::pmr::memory_resource* getLanePool()
{
    static auto* const pool = new std::pmr::unsynchronized_pool_resource;
    return pool;
}

} // namespace

AnimatedProperties::AnimatedProperties() : m_lanes(getLanePool()) {}

void AnimatedProperties::onCurveChanged(Keyframe* curve)
{
    ++m_edits;
    if (curve)
        curve->setEditCount(&m_edits);
}

void AnimatedProperties::forget(const PropertyBase* property)
{
    ++m_edits;
    if (!m_curves)
        return;
    for (CurveTrack& track : m_curves->tracks) {
        if (track.getProperty() == property)
            track.forgetProperty();
    }
}

void AnimatedProperties::update(PropertyContext& context, float time)
{
    if (m_knownEdits != m_edits) [[unlikely]]
        rebuild(context);
    if (!(time >= m_begin && time < m_end)) [[unlikely]]
        enterSegments(time);
    const std::uint32_t edits = m_edits;
    std::size_t firstTrack = 0;
    for (const CurveLanes& lanes : m_lanes) {
        float values[CurveLanes::s_count];
        lanes.evaluate(time, values);
        for (unsigned i = 0; i < lanes.propertyCount; ++i) {
            PropertyBase* property = lanes.properties[i];
            if (lanes.ways[i] == CurveLanes::Way::Lane) [[likely]] {
                if (!static_cast<FloatProperty*>(property)->setDefault(values[i]))
                    continue;
                context.onPropertyChanged(property);
            } else if (lanes.ways[i] == CurveLanes::Way::Lanes) {
                assignComponents(*property, values);
            } else {
                askCurve(*property, time);
            }
            if (m_edits != edits) [[unlikely]] // the lanes may be gone
                return askCurves(firstTrack + i + 1, time);
        }
        firstTrack += lanes.propertyCount;
    }
}

void AnimatedProperties::enterSegments(float time)
{
    // Who is told of a value may tick the context at another time. The tick around that goes on as after an edit,
    // since the lanes no longer hold at its own time.
    ++m_edits;
    ++m_knownEdits;
    m_begin = -std::numeric_limits<float>::infinity();
    m_end = std::numeric_limits<float>::infinity();
    if (!m_curves)
        return;
    for (const CurveTrack& track : m_curves->tracks)
        track.prefetch(m_curves->segments);
    CurveTrack* track = m_curves->tracks.data();
    for (CurveLanes& lanes : m_lanes) {
        for (unsigned i = 0; i < lanes.propertyCount; ++i, ++track) {
            if (!track->holds(time))
                track->enter(time, m_curves->segments, lanes, i);
            m_begin = std::max(m_begin, track->getBegin());
            m_end = std::min(m_end, track->getEnd());
        }
    }
}

/// The rest of a tick in which an edit happened. By index: a property that is told may have the tracks made anew.
void AnimatedProperties::askCurves(std::size_t firstTrack, float time) const
{
    for (std::size_t t = firstTrack; t < m_curves->tracks.size(); ++t) {
        if (PropertyBase* property = m_curves->tracks[t].getProperty())
            askCurve(*property, time);
    }
}

void AnimatedProperties::rebuild(const PropertyContext& context)
{
    m_knownEdits = m_edits;
    m_lanes.clear();
    if (m_curves) {
        m_curves->tracks.clear();
        m_curves->segments.clear();
    }
    for (const auto& [id, property] : context.m_properties) {
        if (isAnimated(*property))
            addProperty(property);
    }
    m_begin = std::numeric_limits<float>::infinity(); // nothing is entered yet
}

void AnimatedProperties::addProperty(PropertyBase* property)
{
    if (!m_curves)
        m_curves = std::make_unique<Curves>();
    const bool isFloat = property->m_type == KindFloat;
    if (m_lanes.empty() || m_lanes.back().isFull() || m_lanes.back().isForFloats != isFloat)
        m_lanes.emplace_back(isFloat);
    CurveLanes& lanes = m_lanes.back();
    lanes.ways[lanes.propertyCount] = CurveLanes::Way::AskCurve; // until a segment is entered
    lanes.properties[lanes.propertyCount++] = property;
    m_curves->tracks.emplace_back(property, m_curves->segments);
}

} // namespace helvantine
