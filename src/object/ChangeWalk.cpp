// SPDX-License-Identifier: MIT
#include "object/ChangeWalk.h"

#include <cstring>
#include <utility>

namespace helvantine
{

namespace
{

/// What the first entry of an object's table of virtual functions points to; in a context, the function that is told
/// of changes.
const void* getFirstFunction(const PropertyContext& context)
{
    const void* const* table = nullptr;
    std::memcpy(&table, reinterpret_cast<const char*>(&context), sizeof(table));
    return *table;
}

struct ActingContext final : PropertyContext
{
    void onPropertyChanged(PropertyBase* property) override
    {
        PropertyContext::onPropertyChanged(property);
        isTold = true;
    }

    bool isTold = false;
};

/// Null where tables look different from what is expected: all contexts then count as acting.
const void* findPlainFunction()
{
    const void* plain = getFirstFunction(PropertyContext());
    return getFirstFunction(ActingContext()) != plain ? plain : nullptr;
}

const void* const s_plainFunction = findPlainFunction();

} // namespace

ChangeWalk::State ChangeWalk::s_state;

ChangeWalk::ChangeWalk(const Stop& first) : m_first(first), m_outer(std::exchange(s_state.innermost, this))
{
    if (!s_state.stops)
        s_state.stops = new std::vector<Stop>;
    m_base = s_state.stops->size();
    if (s_state.depth++ == 0)
        ++s_state.change;
}

ChangeWalk::~ChangeWalk()
{
    for (; s_state.stops->size() > m_base; s_state.stops->pop_back())
        s_state.stops->back().context->endTelling();
    m_first.context->endTelling();
    --s_state.depth;
    s_state.innermost = m_outer;
}

void ChangeWalk::run()
{
    std::vector<Stop>& stops = *s_state.stops;
    for (;;) {
        // Looked up anew each time: a walk within may have moved the stops, and a listener may add others.
        const bool isFirst = stops.size() == m_base;
        Stop& stop = isFirst ? m_first : stops.back();
        if (stop.next == stop.listeners->size()) {
            if (isFirst)
                return;
            PropertyContext* context = stop.context;
            stops.pop_back();
            context->endTelling();
            continue;
        }
        PropertyListener* listener = (*stop.listeners)[stop.next++];
        if (!listener) // removed since the telling began
            continue;
        s_state.told = listener;
        listener->onPropertyChanged(stop.property);
        if (s_state.left.context)
            stops.push_back(std::exchange(s_state.left, {}));
    }
}

/// The language has no question for that, the table of
/// virtual functions has the answer. A wrong "no", as for a library with a copy of that function, costs stack alone.
bool ChangeWalk::isPlain(const PropertyContext& context)
{
    return getFirstFunction(context) == s_plainFunction;
}

std::vector<PropertyListener*> ChangeWalk::getWay()
{
    std::vector<PropertyListener*> way;
    const auto add = [&](const Stop& stop) { way.push_back((*stop.listeners)[stop.next - 1]); };
    std::size_t end = s_state.stops ? s_state.stops->size() : 0;
    for (const ChangeWalk* walk = s_state.innermost; walk; walk = walk->m_outer) {
        while (end > walk->m_base)
            add((*s_state.stops)[--end]);
        add(walk->m_first);
    }
    return way;
}

} // namespace helvantine
