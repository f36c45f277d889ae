// SPDX-License-Identifier: MIT
#include <helvantine/timeline/ChildWindows.h>

#include <helvantine/timeline/Effect.h>

#include <algorithm>
#include <limits>

namespace helvantine
{

namespace
{

constexpr std::size_t s_unknown = std::numeric_limits<std::size_t>::max();
constexpr std::int64_t s_frameCount = std::int64_t(1) << 32; // frames wrap

/// A half-open stretch of frames.
struct Frames
{
    std::int64_t begin;
    std::int64_t end;
};

bool isInside(std::int32_t local, std::int32_t length)
{
    return local >= 0 && local < length;
}

/// The frames around one for which a window lies on the same side of them.
Frames getFramesAlike(std::int32_t frame, std::int32_t local, std::int32_t length)
{
    const std::int64_t start = std::int64_t(frame) - local;
    if (isInside(local, length))
        return {start, start + length};
    if (local < 0)
        return {start - s_frameCount / 2, start};
    return {start + std::max(length, 0), start + s_frameCount / 2};
}

} // namespace

ChildWindows::Walk::Walk(ChildWindows& windows, std::int32_t frame) : m_windows(windows), m_frame(frame)
{
    if (windows.isStale())
        windows.refresh();
    if (frame < windows.m_begin || frame >= windows.m_end)
        windows.select(frame);
    m_selection = windows.m_selections;
    m_visit = windows.m_selected.data();
    m_end = m_visit + windows.m_selected.size();
}

const ChildWindows::Visit* ChildWindows::Walk::findAwake()
{
    while (Visit* visit = getNext()) {
        if (visit->isInside)
            return visit;
        if (visit->mayRun) {
            visit->mayRun = false; // stopped now
            return visit;
        }
    }
    return nullptr;
}

const ChildWindows::Visit* ChildWindows::Walk::findInside()
{
    while (const Visit* visit = getNext()) {
        if (visit->isInside)
            return visit;
    }
    return nullptr;
}

ChildWindows::Visit* ChildWindows::Walk::getNext()
{
    if (!m_windows.isStale() && m_windows.m_selections == m_selection) {
        if (m_visit == m_end)
            return nullptr;
        m_behindVisit = m_visit->position + 1;
        return m_visit++;
    }
    // An edit happened, or somebody walked at another frame meanwhile. Who starts now isn't known as one that runs.
    m_windows.m_knownCount = s_unknown;
    if (m_behindVisit >= m_windows.m_parent.m_children.size())
        return nullptr;
    const Child child = m_windows.read(m_behindVisit);
    const bool inside = isInside(subtractFrames(m_frame, child.start), child.length);
    m_asked = {m_behindVisit++, child.start, inside, child.mayRun};
    return &m_asked;
}

bool ChildWindows::isStale() const
{
    // The list of children is public: one that was changed by hand is at least never read past its end.
    return m_knownEdits != Object::getTimelineEdits() || m_knownCount != m_parent.m_children.size();
}

ChildWindows::Child ChildWindows::read(std::size_t position) const
{
    const auto& child = static_cast<const Effect&>(*m_parent.m_children[position]);
    return {child.getRelativeStartFrame(), child.getLength(), child.m_activeState == 1};
}

void ChildWindows::refresh()
{
    m_knownEdits = Object::getTimelineEdits();
    m_knownCount = m_parent.m_children.size();
    m_children.resize(m_knownCount);
    for (std::size_t i = 0; i < m_knownCount; ++i)
        m_children[i] = read(i);
    m_selected.clear();
    m_selected.reserve(m_knownCount); // so that no selection allocates
    m_begin = m_end = 0;
}

void ChildWindows::select(std::int32_t frame)
{
    for (const Visit& visit : m_selected) // those that were visited outside their window don't run any more
        m_children[visit.position].mayRun = visit.isInside || visit.mayRun;
    ++m_selections;
    m_selected.clear();
    m_begin = std::numeric_limits<std::int64_t>::min();
    m_end = std::numeric_limits<std::int64_t>::max();
    for (std::size_t i = 0; i < m_knownCount; ++i) {
        const Child& child = m_children[i];
        const std::int32_t local = subtractFrames(frame, child.start);
        const Frames alike = getFramesAlike(frame, local, child.length);
        m_begin = std::max(m_begin, alike.begin);
        m_end = std::min(m_end, alike.end);
        const bool inside = isInside(local, child.length);
        if (inside || child.mayRun)
            m_selected.push_back({static_cast<std::uint32_t>(i), child.start, inside, child.mayRun});
    }
}

} // namespace helvantine
