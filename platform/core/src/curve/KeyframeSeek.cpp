// SPDX-License-Identifier: MIT
// How a curve finds what holds at a time. Everything that repeats or goes on beyond the keys becomes a window
// of its own, so that playback out there costs no more than between the keys.
#include <helvantine/core/Keyframe.h>

#include <algorithm>
#include <cmath>

namespace helvantine
{

namespace
{

constexpr double s_infinity = std::numeric_limits<double>::infinity();
constexpr double s_largestTime = std::numeric_limits<float>::max();

} // namespace

/// Finds the piece for a time outside the window, sets the window around it and prepares it. False if the
/// curve yields nothing. `time` is brought into the finite range.
bool Keyframe::seek(double& time)
{
    if (m_times.empty() || std::isnan(time))
        return false;
    time = std::clamp(time, -s_largestTime, s_largestTime);
    Piece piece;
    if (time >= m_times.front() && time <= m_times.back())
        seekKeys(time, piece);
    else
        seekOutside(time, piece);
    prepare(piece);
    return true;
}

void Keyframe::seekKeys(double time, Piece& piece)
{
    if (time == m_times.back()) {
        // Only for this instant: what follows is up to the mode.
        forgetWindow();
        piece.key = m_times.size() - 1;
        return;
    }
    piece.kind = Piece::Segment;
    piece.key = findSegment(time);
    const double begin = m_times[piece.key];
    m_window = {begin, m_times[piece.key + 1], begin, 1.0 / getSpan(piece.key)};
}

void Keyframe::seekOutside(double& time, Piece& piece)
{
    const bool before = time < m_times.front();

    const KeyframeOOR mode = before ? m_preOOR : m_postOOR;
    const bool repeats =
        mode == KeyframeOOR::Cycle || mode == KeyframeOOR::CycleOffset || mode == KeyframeOOR::Oscillate;
    if (repeats && m_times.front() < m_times.back())
        seekTurn(time, mode, piece);
    else
        seekEnd(!before, mode, piece);
}

void Keyframe::seekTurn(double& time, KeyframeOOR mode, Piece& piece)
{
    const double first = m_times.front();
    const double length = m_times.back() - first;
    const double turn = std::floor((time - first) / length);
    const double shift = turn * length;
    const bool backwards = mode == KeyframeOOR::Oscillate && std::fmod(turn, 2.0) != 0.0;
    const double mirror = 2.0 * first + shift + length; // a time and its mirror image add up to this

    const double local = std::clamp(backwards ? mirror - time : time - shift, first, first + length);
    piece.turns = mode == KeyframeOOR::CycleOffset ? turn : 0.0;
    seekKeys(local, piece);
    if (piece.kind != Piece::Segment)
        return;

    const double rate = m_window.rate;
    const double begin = m_window.begin;
    const double end = m_window.end;
    if (backwards) // the instant of the later key belongs to the segment that starts there
        m_window = {std::nextafter(mirror - end, s_infinity), mirror - begin, mirror - begin, -rate};
    else
        m_window = {begin + shift, end + shift, begin + shift, rate};
    // Far out, rounding may leave the time beside its window.
    time = std::min(std::max(time, m_window.begin), m_window.end);
}

void Keyframe::seekEnd(bool after, KeyframeOOR mode, Piece& piece)
{
    const std::size_t last = m_times.size() - 1;
    piece.key = after ? last : 0;
    const double end = m_times[piece.key];
    m_window = {after ? end : -s_largestTime, after ? s_infinity : end, end, 0.0};
    if (mode != KeyframeOOR::Linear || m_times.front() == m_times.back())
        return;

    piece.kind = Piece::Extrapolate;
    m_window.rate = 1.0;
    // A step at the end has no slope of its own; the segment before it has.
    piece.slopeKey = after ? last - 1 : 0;
    while (getSpan(piece.slopeKey) == 0.0)
        piece.slopeKey += after ? -1 : 1;
}

/// The segment that holds a time from the first key up to, but not at, the last.
std::size_t Keyframe::findSegment(double time)
{
    const auto holds = [&](std::size_t segment) {
        return segment + 1 < m_times.size() && time >= m_times[segment] && time < m_times[segment + 1];
    };
    if (holds(m_segment))
        return m_segment;
    if (holds(m_segment + 1))
        return ++m_segment;
    const auto next = std::upper_bound(m_times.begin(), m_times.end(), time);
    m_segment = static_cast<std::size_t>(next - m_times.begin()) - 1;
    return m_segment;
}

} // namespace helvantine
