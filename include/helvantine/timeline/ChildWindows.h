// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace helvantine
{

class Effect;

/// The windows of an effect's children on the composition's clock, beside each other: a walk steps over those that
/// don't run without looking at the children themselves.
///
/// They are read anew at the begin of the first walk after an edit of any timeline (Object::getTimelineEdits).
/// Walks in which an edit happens ask the rest of the children themselves: a start that a hook moves counts from
/// the next child on.
class ChildWindows
{
public:
    struct Child
    {
        std::int32_t start = 0; ///< first frame; the starts of the ancestors are in it
        std::int32_t length = 0;
        bool mayRun = false; ///< outside its window too

        bool contains(std::int32_t frame) const; ///< on the composition's clock
    };

    explicit ChildWindows(const Effect& parent) : m_parent(parent) {}
    ChildWindows(const ChildWindows&) = delete;
    ChildWindows& operator=(const ChildWindows&) = delete;

    /// Moves the position on to the first child that is to be updated or stopped, which the caller then does; null
    /// past the last one. What it points to is valid until a hook is called.
    const Child* findAwake(std::size_t& position, std::int32_t frame);
    /// The same for children in their window, whether they run or not.
    const Child* findInside(std::size_t& position, std::int32_t frame);

private:
    bool isStale() const;
    Child& at(std::size_t position);
    Child read(std::size_t position) const;
    void refresh();

    const Effect& m_parent;
    std::vector<Child> m_children; ///< as those of the parent, unless stale
    Child m_asked;                 ///< the child that was asked last
    std::uint32_t m_knownEdits = 0;
};

} // namespace helvantine
