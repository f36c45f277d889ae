// SPDX-License-Identifier: MIT
// How a curve finds what holds at a time. Everything that repeats or goes on beyond the keys becomes a window
// of its own, so that playback out there costs no more than between the keys.
//
// A value is a function of time, whichever window was entered before: windows never overlap. Those outside the keys
// leave out the first key and the last, and turns lie side by side however their borders are rounded.
#include <helvantine/core/Keyframe.h>

#include <algorithm>
#include <cmath>

namespace helvantine
{

namespace
{

constexpr double s_infinity = std::numeric_limits<double>::infinity();
constexpr double s_largestTime = std::numeric_limits<float>::max();
constexpr double s_maxTurns = 1 << 30; ///< beyond, one float to the next is many turns

double justBehind(double time)
{
    return std::nextafter(time, s_infinity);
}

/// One turn of a curve that repeats: where its keys lie in time.
class Turn
{
public:
    Turn(double first, double last, double time)
        : m_first(first), m_last(last), m_number(std::floor((time - first) / (last - first)))
    {
        // The quotient is rounded; the borders of the turns decide.
        if (time < getBegin(m_number))
            --m_number;
        else if (time >= getBegin(m_number + 1))
            ++m_number;
        m_begin = getBegin(m_number);
        m_end = getBegin(m_number + 1);
    }

    double getNumber() const { return m_number; }
    bool isOdd() const { return std::fmod(m_number, 2.0) != 0.0; }
    bool holds(double time) const { return time >= m_begin && time < m_end; }

    /// A key's place in the turn; the ends are exactly those of the turns beside it.
    double place(double key) const
    {
        if (key <= m_first)
            return m_begin;
        return key < m_last ? std::clamp(key + m_number * (m_last - m_first), m_begin, m_end) : m_end;
    }
    /// The same in a turn that runs backwards.
    double placeBackwards(double key) const
    {
        if (key <= m_first)
            return m_end;
        return key < m_last ? std::clamp(m_begin + (m_last - key), m_begin, m_end) : m_begin;
    }

private:
    double getBegin(double turn) const { return m_first + turn * (m_last - m_first); }

    double m_first;
    double m_last;
    double m_number;
    double m_begin;
    double m_end;
};

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
    if (time == m_times.back())
        return holdInstant(m_times.size() - 1, piece); // what follows is up to the mode
    piece.kind = Piece::Segment;
    piece.key = findSegment(time);
    const double begin = m_times[piece.key];
    m_window = {begin, m_times[piece.key + 1], begin, 1.0 / getSpan(piece.key)};
}

/// A key's value for the time that was asked, and for no other.
void Keyframe::holdInstant(std::size_t key, Piece& piece)
{
    forgetWindow();
    piece.key = key;
}

void Keyframe::seekOutside(double time, Piece& piece)
{
    const bool before = time < m_times.front();

    const KeyframeOOR mode = before ? m_preOOR : m_postOOR;
    const bool repeats =
        mode == KeyframeOOR::Cycle || mode == KeyframeOOR::CycleOffset || mode == KeyframeOOR::Oscillate;
    if (repeats && m_times.front() < m_times.back())
        seekTurn(time, mode, piece);
    else
        seekEnd(!before, mode, piece);
    if (before)
        m_window.end = std::min(m_window.end, double(m_times.front()));
    else
        m_window.begin = std::max(m_window.begin, justBehind(m_times.back()));
}

void Keyframe::seekTurn(double time, KeyframeOOR mode, Piece& piece)
{
    const Turn turn(m_times.front(), m_times.back(), time);
    piece.turns = mode == KeyframeOOR::CycleOffset ? turn.getNumber() : 0.0;
    if (std::abs(turn.getNumber()) > s_maxTurns || !turn.holds(time))
        return holdInstant(0, piece);

    const bool backwards = mode == KeyframeOOR::Oscillate && turn.isOdd();
    const auto behind =
        backwards ? std::partition_point(m_times.begin(), m_times.end(),
                                         [&](float key) { return turn.placeBackwards(key) >= time; })
                  : std::partition_point(m_times.begin(), m_times.end(),
                                         [&](float key) { return turn.place(key) <= time; });
    if (behind == m_times.end()) // a turn backwards starts there
        return holdInstant(m_times.size() - 1, piece);

    piece.kind = Piece::Segment;
    piece.key = static_cast<std::size_t>(behind - m_times.begin()) - 1;
    const float from = m_times[piece.key];
    const float to = m_times[piece.key + 1];
    const double rate = 1.0 / getSpan(piece.key);
    if (backwards) // the instant of the later key belongs to the segment that starts there
        m_window = {justBehind(turn.placeBackwards(to)), turn.placeBackwards(from), turn.placeBackwards(from),
                    -rate};
    else
        m_window = {turn.place(from), turn.place(to), turn.place(from), rate};
}

void Keyframe::seekEnd(bool after, KeyframeOOR mode, Piece& piece)
{
    const std::size_t last = m_times.size() - 1;
    piece.key = after ? last : 0;
    m_window = {-s_largestTime, s_infinity, m_times[piece.key], 0.0};
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
