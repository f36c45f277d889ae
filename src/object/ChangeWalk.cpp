// SPDX-License-Identifier: MIT
#include "object/ChangeWalk.h"

#include <utility>

namespace helvantine
{

namespace
{

struct ActingContext final : PropertyContext
{
    void onPropertyChanged(PropertyBase* property) override
    {
        PropertyContext::onPropertyChanged(property);
        isTold = true;
    }

    bool isTold = false;
};

} // namespace

ChangeWalk::State ChangeWalk::s_state = {.stops = new std::vector<Stop>};
const void* const ChangeWalk::s_plainFunction = findPlainFunction();

/// Null where tables look different from what is expected: all contexts then count as acting.
const void* ChangeWalk::findPlainFunction()
{
    const void* plain = getFirstFunction(PropertyContext());
    return getFirstFunction(ActingContext()) != plain ? plain : nullptr;
}

void ChangeWalk::leave(const Stop& stop)
{
    s_state.awaited = nullptr;
    s_state.left = stop;
}

void ChangeWalk::tellNext(Stop& stop)
{
    PropertyListener* listener = (*stop.listeners)[stop.next++];
    if (!listener) // removed since the telling began
        return;
    s_state.told = listener;
    listener->onPropertyChanged(stop.property);
}

void ChangeWalk::run()
{
    while (!m_first.isAtEnd()) {
        tellNext(m_first);
        if (s_state.left.context) [[unlikely]]
            runFurther();
    }
}

/// Tells the list that was left, and those that are left meanwhile.
void ChangeWalk::runFurther()
{
    struct Guard // against exceptions, too
    {
        ~Guard()
        {
            for (; stops.size() > base; stops.pop_back())
                stops.back().context->endTelling();
            s_state.isFurther = wasFurther;
        }
        std::vector<Stop>& stops;
        const std::size_t base;
        const bool wasFurther = std::exchange(s_state.isFurther, true);
    };
    std::vector<Stop>& stops = *s_state.stops;
    const Guard guard{stops, m_base};
    do {
        if (s_state.left.context)
            stops.push_back(std::exchange(s_state.left, {}));
        if (!stops.back().isAtEnd()) {
            tellNext(stops.back());
            continue;
        }
        PropertyContext* context = stops.back().context;
        stops.pop_back();
        context->endTelling();
    } while (stops.size() > m_base || s_state.left.context);
}

std::vector<PropertyListener*> ChangeWalk::getWay()
{
    std::vector<PropertyListener*> way;
    const auto add = [&](const Stop& stop) { way.push_back((*stop.listeners)[stop.next - 1]); };
    std::size_t end = s_state.stops->size();
    for (const ChangeWalk* walk = s_state.innermost; walk; walk = walk->m_outer) {
        while (end > walk->m_base)
            add((*s_state.stops)[--end]);
        add(walk->m_first);
    }
    return way;
}

} // namespace helvantine
