// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyContext.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
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
    using Listeners = std::vector<PropertyListener*>;

    /// Tells a list, or leaves it to the walk that waits for the property. The context counts the telling already.
    static void tell(PropertyContext& context, const Listeners& listeners, PropertyBase* property)
    {
        if (s_state.awaited == property) [[unlikely]]
            leave({&context, &listeners, property});
        else
            ChangeWalk(context, listeners, property).run();
    }

    /// Whether the listener is called by the walk that runs, and may so leave it a list. True once in a call.
    static bool isCalling(const PropertyListener& listener)
    {
        return std::exchange(s_state.told, nullptr) == &listener;
    }
    /// Whether the context's class leaves onPropertyChanged as it is. The language has no question for that, the table
    /// of virtual functions has the answer. A wrong "no", as for a library with a copy of that function, costs stack
    /// alone.
    static bool isPlain(const PropertyContext& context)
    {
        return getFirstFunction(context) == s_plainFunction;
    }
    /// While it lives, a change of the property leaves its listeners to the walk. Its context is plain.
    class Leaving
    {
    public:
        explicit Leaving(const PropertyBase* property) { s_state.awaited = property; }
        ~Leaving() { s_state.awaited = nullptr; }
        Leaving(const Leaving&) = delete;
        Leaving& operator=(const Leaving&) = delete;
    };

    /// The number of the change that runs, or ran last.
    static std::uint64_t getChange() { return s_state.change; }
    /// Walks within walks; 0 while no change runs.
    static int getDepth() { return s_state.depth; }
    /// What the change began with; its listeners are all told at the start.
    static const PropertyBase* getStart() { return s_state.start; }
    /// Whether they are told right now, for the first time.
    static bool isAtStart() { return s_state.depth == 1 && !s_state.isFurther; }

    /// The listeners on the way to the one that is told now, which is the first, back to where the change began.
    static std::vector<PropertyListener*> getWay();

private:
    /// A list that is being told.
    struct Stop
    {
        PropertyContext* context = nullptr; ///< null for none
        const Listeners* listeners = nullptr;
        PropertyBase* property = nullptr;
        std::size_t next = 0;

        bool isAtEnd() const { return next == listeners->size(); }
    };

    struct State
    {
        const PropertyListener* told = nullptr; ///< by the innermost walk, latest
        const PropertyBase* awaited = nullptr;
        Stop left; ///< for the innermost walk to go on with
        const PropertyBase* start = nullptr;
        std::uint64_t change = 0;
        int depth = 0;
        ChangeWalk* innermost = nullptr;
        bool isFurther = false;   ///< beyond the list that the change began with
        std::vector<Stop>* stops; ///< of all walks, each behind its first; never destroyed
    };

    ChangeWalk(PropertyContext& context, const Listeners& listeners, PropertyBase* property)
        : m_first{&context, &listeners, property}, m_base(s_state.stops->size()),
          m_outer(std::exchange(s_state.innermost, this))
    {
        if (s_state.depth++ == 0) {
            ++s_state.change;
            s_state.start = property;
        }
    }
    ~ChangeWalk()
    {
        m_first.context->endTelling();
        --s_state.depth;
        s_state.innermost = m_outer;
    }
    ChangeWalk(const ChangeWalk&) = delete;
    ChangeWalk& operator=(const ChangeWalk&) = delete;

    static void leave(const Stop& stop);
    void run();
    void runFurther();
    static void tellNext(Stop& stop);

    /// What the first entry of a context's table of virtual functions points to, which is onPropertyChanged.
    static const void* getFirstFunction(const PropertyContext& context)
    {
        const void* const* table = nullptr;
        std::memcpy(&table, reinterpret_cast<const char*>(&context), sizeof(table));
        return *table;
    }
    static const void* findPlainFunction();

    static State s_state;
    static const void* const s_plainFunction;

    Stop m_first;
    std::size_t m_base; ///< number of stops of the walks around
    ChangeWalk* m_outer;
};

} // namespace helvantine
