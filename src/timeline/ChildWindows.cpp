// SPDX-License-Identifier: MIT
#include <helvantine/timeline/ChildWindows.h>

#include <helvantine/timeline/Effect.h>

namespace helvantine
{

bool ChildWindows::Child::contains(std::int32_t frame) const
{
    const std::int32_t local = subtractFrames(frame, start);
    return local >= 0 && local < length;
}

const ChildWindows::Child* ChildWindows::findAwake(std::size_t& position, std::int32_t frame)
{
    if (position == 0 && isStale())
        refresh();
    for (; position < m_parent.m_children.size(); ++position) {
        Child& child = at(position);
        const bool isInside = child.contains(frame);
        if (!isInside && !child.mayRun)
            continue; // nearly all of a long timeline
        child.mayRun = isInside;
        return &child;
    }
    return nullptr;
}

const ChildWindows::Child* ChildWindows::findInside(std::size_t& position, std::int32_t frame)
{
    if (position == 0 && isStale())
        refresh();
    for (; position < m_parent.m_children.size(); ++position) {
        const Child& child = at(position);
        if (child.contains(frame))
            return &child;
    }
    return nullptr;
}

bool ChildWindows::isStale() const
{
    // The list of children is public: one that was changed by hand is at least never read past its end.
    return m_knownEdits != Object::getTimelineEdits() || m_children.size() != m_parent.m_children.size();
}

ChildWindows::Child& ChildWindows::at(std::size_t position)
{
    if (!isStale())
        return m_children[position];
    m_asked = read(position);
    return m_asked;
}

ChildWindows::Child ChildWindows::read(std::size_t position) const
{
    const auto& child = static_cast<const Effect&>(*m_parent.m_children[position]);
    return {child.getRelativeStartFrame(), child.getLength(), child.m_activeState == 1};
}

void ChildWindows::refresh()
{
    m_knownEdits = Object::getTimelineEdits();
    m_children.resize(m_parent.m_children.size());
    for (std::size_t i = 0; i < m_children.size(); ++i)
        m_children[i] = read(i);
}

} // namespace helvantine
