// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Keyframe.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace helvantine
{

class PropertyBase;

/// Four cubics side by side, which the processor evaluates at once: those of one to four float properties, or the
/// components of one property of another kind.
struct CurveLanes
{
    static constexpr unsigned s_count = 4;

    /// How a property gets its value.
    enum class Way : std::uint8_t
    {
        Lane,     ///< a float, from its own
        Lanes,    ///< another kind, from all
        AskCurve, ///< which is no cubic around this time
    };

    explicit CurveLanes(bool forFloats) : isForFloats(forFloats) {}

    bool isFull() const { return !isForFloats || propertyCount == s_count; }
    void set(unsigned lane, const Keyframe::Cubic& cubic);
    void evaluate(float time, float (&values)[s_count]) const
    {
        for (unsigned lane = 0; lane < s_count; ++lane) {
            const float u = static_cast<float>((time - origins[lane]) * rates[lane]);
            values[lane] =
                powers[0][lane] + u * (powers[1][lane] + u * (powers[2][lane] + u * powers[3][lane]));
        }
    }

    alignas(16) double origins[s_count] = {};
    double rates[s_count] = {};
    float powers[4][s_count] = {}; ///< power, lane
    PropertyBase* properties[s_count] = {};
    Way ways[s_count] = {}; ///< by property
    std::uint8_t propertyCount = 0;
    bool isForFloats;
};

/// A property's curve as its segments, and the stretch of time for which its lanes hold: there they yield to the
/// last bit what the curve yields.
class CurveTrack
{
public:
    using Segments = std::vector<Keyframe::Segment>;

    /// Of a property that has a curve with as many components as its kind, or more. Appends the segments to those of
    /// the other tracks.
    CurveTrack(PropertyBase* property, Segments& segments);

    PropertyBase* getProperty() const { return m_property; } ///< null once it left
    void forgetProperty() { m_property = nullptr; }

    bool holds(float time) const { return time >= m_begin && time < m_end; }
    float getBegin() const { return m_begin; }
    float getEnd() const { return m_end; }
    /// Lets the next segment be fetched, since in steady playback `enter` will want it.
    void prefetch(const Segments& segments) const { __builtin_prefetch(segments.data() + m_next); }
    /// Sets the property's lanes so that they hold at that time. Where the curve is no cubic, sets the way.
    void enter(float time, const Segments& segments, CurveLanes& lanes, unsigned index);

private:
    const Keyframe::Segment* find(float time, const Segments& segments);
    void enterFromCurve(float time, CurveLanes& lanes, unsigned index);

    float m_begin = std::numeric_limits<float>::infinity(); ///< nothing is entered yet
    float m_end = -std::numeric_limits<float>::infinity();
    PropertyBase* m_property;
    unsigned m_components;
    std::size_t m_first; ///< of its segments, among all
    std::size_t m_next;  ///< the segment behind the one that was found last
    std::size_t m_last;  ///< behind its last segment
};

} // namespace helvantine
