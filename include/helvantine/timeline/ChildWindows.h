// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace helvantine
{

class Effect;

/// The windows of an effect's children on the composition's clock, and the children to visit around the frame walked
/// last: while that frame passes no begin and no end of a window, a walk costs what runs, not what there is.
///
/// The windows are read anew at the begin of the first walk after an edit of any timeline (Object::getTimelineEdits).
/// Walks in which an edit happens ask the rest of the children themselves: a start that a hook moves counts from
/// the next child on.
class ChildWindows
{
public:
    /// A child to visit.
    struct Visit
    {
        std::uint32_t position = 0; ///< among the children
        std::int32_t start = 0;     ///< first frame; the starts of the ancestors are in it
        bool isInside = false;      ///< its window
        bool mayRun = false;        ///< outside its window too
    };

    /// One way through the children, in their order. What it finds is valid until a hook is called.
    class Walk
    {
    public:
        Walk(ChildWindows& windows, std::int32_t frame);

        /// The next child that is to be updated or stopped, which the caller then does; null behind the last one.
        const Visit* findAwake();
        /// The next child in its window, whether it runs or not; null behind the last one.
        const Visit* findInside();

    private:
        Visit* getNext();

        ChildWindows& m_windows;
        std::int32_t m_frame;
        std::uint32_t m_selection; ///< the one that is walked
        Visit* m_visit;            ///< the next in it, while it is the last selection
        Visit* m_end;
        std::uint32_t m_behindVisit = 0; ///< position behind the child visited last
        Visit m_asked;                   ///< the child that was asked last
    };

    explicit ChildWindows(const Effect& parent) : m_parent(parent) {}
    ChildWindows(const ChildWindows&) = delete;
    ChildWindows& operator=(const ChildWindows&) = delete;

private:
    struct Child
    {
        std::int32_t start;
        std::int32_t length;
        bool mayRun; ///< it ran when it was read, or has been visited in its window since
    };

    bool isStale() const;
    Child read(std::size_t position) const;
    void refresh();
    void select(std::int32_t frame);

    const Effect& m_parent;
    std::uint32_t m_knownEdits = 0;
    std::uint32_t m_selections = 0; ///< so many have been made
    std::size_t m_knownCount = 0;   ///< of the parent's children, or a number that is none
    std::vector<Visit> m_selected;
    std::int64_t m_begin = 0; ///< the selection stays as it is from this frame on
    std::int64_t m_end = 0;   ///< up to, but not at, this one
    std::vector<Child> m_children;
};

} // namespace helvantine
