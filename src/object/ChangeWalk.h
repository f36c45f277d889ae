// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyContext.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace helvantine
{

/// How a change runs through listeners and links: depth first, each list in its order.
///
/// A link that leads to a context whose class adds nothing to the telling doesn't have the target's listeners told
/// within its own call. It leaves them to the walk that called it, which goes on with them before it comes to the next
/// listener: the order is the same, and no way is too long for the stack. A class that does something of its own when
/// it is told must have it done behind the target's listeners, so there a walk runs within the walk.
class ChangeWalk
{
public:
    /// A list that is being told.
    struct Stop
    {
        PropertyContext* context = nullptr; ///< null for none
        const std::vector<PropertyListener*>* listeners = nullptr;
        PropertyBase* property = nullptr;
        std::size_t next = 0;
    };

    /// Tells a list, or leaves it to the walk that waits for the property. The context counts the telling already.
    static void tell(const Stop& stop)
    {
        if (s_state.awaited == stop.property) {
            s_state.awaited = nullptr;
            s_state.left = stop;
        } else {
            ChangeWalk(stop).run();
        }
    }

    /// Whether the listener is called by the walk that runs, and may so leave it a list. True once in a call.
    static bool isCalling(const PropertyListener& listener)
    {
        return std::exchange(s_state.told, nullptr) == &listener;
    }
    /// Whether the context's class leaves onPropertyChanged as it is.
    static bool isPlain(const PropertyContext& context);
    /// While it lives, a change of the property leaves its listeners to the walk. Its context is plain.
    class Leaving
    {
    public:
        explicit Leaving(const PropertyBase* property) { s_state.awaited = property; }
        ~Leaving() { s_state.awaited = nullptr; }
        Leaving(const Leaving&) = delete;
        Leaving& operator=(const Leaving&) = delete;
    };

    static std::uint64_t getChange()
    {
        return s_state.change;
    }                                               ///< the number of the one that runs, or ran last
    static int getDepth() { return s_state.depth; } ///< walks within walks; 0 while no change runs

    /// The listeners on the way to the one that is told now, which is the first, back to where the change began.
    static std::vector<PropertyListener*> getWay();

private:
    struct State
    {
        const PropertyListener* told = nullptr; ///< by the innermost walk, latest
        const PropertyBase* awaited = nullptr;
        Stop left; ///< for the innermost walk to go on with
        std::uint64_t change = 0;
        int depth = 0;
        ChangeWalk* innermost = nullptr;
        std::vector<Stop>* stops = nullptr; ///< of all walks, each behind its first; never destroyed
    };

    explicit ChangeWalk(const Stop& first);
    ~ChangeWalk();
    ChangeWalk(const ChangeWalk&) = delete;
    ChangeWalk& operator=(const ChangeWalk&) = delete;

    void run();

    static State s_state;

    Stop m_first;
    std::size_t m_base; ///< number of stops of the walks around
    ChangeWalk* m_outer;
};

} // namespace helvantine
