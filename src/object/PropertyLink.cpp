// SPDX-License-Identifier: MIT
#include <helvantine/object/PropertyLink.h>

#include "object/ChangeWalk.h"

#include <helvantine/core/Report.h>
#include <helvantine/object/Object.h>
#include <helvantine/object/Property.h>
#include <helvantine/schematics/Schematics.h>

#include <algorithm>
#include <utility>

namespace helvantine
{

namespace
{

constexpr int s_maxEntries = 8;  ///< of a link within one change: rings settle before, or never
constexpr int s_maxDepth = 1000; ///< contexts that act on a change, one within the telling of the other

std::string describe(const PropertyBase& property)
{
    std::string text = '"' + property.m_name + '"';
    if (const auto* object = dynamic_cast<const Object*>(property.m_context))
        text += " of " + (object->m_name.empty() ? object->getTypeInfo()->name : '"' + object->m_name + '"');
    return text;
}

void connect(LinkEnd& end, PropertyBase& property)
{
    end.next = property.m_linkEnds;
    end.place = &property.m_linkEnds;
    if (end.next)
        end.next->place = &end.next;
    property.m_linkEnds = &end;
}

void disconnect(LinkEnd& end)
{
    *end.place = end.next;
    if (end.next)
        end.next->place = end.place;
    end.place = nullptr;
}

} // namespace

PropertyLink::PropertyLink(PropertyBase* source, PropertyBase* target) : m_source(source), m_target(target)
{
    m_place = static_cast<std::uint32_t>(m_source->m_context->appendListener(m_source->m_id, this));
    connect(m_sourceEnd, *source);
    connect(m_targetEnd, *target);
}

PropertyLink::~PropertyLink()
{
    stopListening();
}

void PropertyLink::stopListening()
{
    if (!m_source)
        return;
    m_source->m_context->removeLink(*this);
    disconnect(m_sourceEnd);
    disconnect(m_targetEnd);
    m_source = nullptr;
    m_target = nullptr;
}

/// For a property that is destroyed. The graph may hold the last reference.
void PropertyLink::drop()
{
    stopListening();
    if (m_graph)
        m_graph->dropLink(*this);
}

void PropertyLink::onPropertyChanged(PropertyBase* property)
{
    if (!m_target)
        return;
    const bool isCalled = ChangeWalk::isCalling(*this);
    if (PropertyLinkLimit::isSet() && !PropertyLinkLimit::take(PropertyLinkLimit::countSteps(*property)))
        return;
    // A link that is passed at the start has that passage counted already: nothing is written to most links.
    if (!(isCalled && ChangeWalk::isAtStart()) && !enter())
        return;
    if (isCalled && ChangeWalk::isPlain(*m_target->m_context)) {
        const ChangeWalk::Leaving leaving(m_target);
        property->copyTo(m_target, true, false);
    } else if (ChangeWalk::getDepth() <= s_maxDepth) {
        property->copyTo(m_target, true, false);
    } else {
        report("lies behind " + std::to_string(s_maxDepth) +
               " objects that act on one change, each within the other's, and is left out");
    }
}

/// Whether the change that runs may run through this link (once more).
bool PropertyLink::enter()
{
    if (ChangeWalk::getDepth() == 0) // called by hand: a change begins here
        return true;
    if (m_change != ChangeWalk::getChange()) {
        m_change = ChangeWalk::getChange();
        m_entries = m_source == ChangeWalk::getStart() ? 1 : 0;
    }
    if (m_entries < s_maxEntries) {
        ++m_entries;
        return true;
    }
    report("is passed " + std::to_string(s_maxEntries) +
           " times by one change and left out from there: its links form a ring that doesn't settle");
    return false;
}

/// Once for a ring, wherever it is cut, and once for a change.
void PropertyLink::report(const std::string& what)
{
    static std::uint64_t s_reportedChange = 0;
    if (m_isReported || s_reportedChange == m_change)
        return;
    s_reportedChange = m_change;
    m_isReported = true;
    const std::vector<PropertyListener*> way = ChangeWalk::getWay();
    const auto ringEnd = std::find(way.begin() + 1, way.end(), this);
    if (ringEnd != way.end()) {
        std::for_each(way.begin(), ringEnd, [](PropertyListener* listener) {
            if (auto* link = dynamic_cast<PropertyLink*>(listener))
                link->m_isReported = true;
        });
    }
    reportProblem("link", "from " + describe(*m_source) + " to " + describe(*m_target) + " " + what);
}

PropertyLinkLimit* PropertyLinkLimit::s_current = nullptr;

PropertyLinkLimit::PropertyLinkLimit(std::int64_t steps)
    : m_left(steps), m_outer(std::exchange(s_current, this))
{
}

PropertyLinkLimit::~PropertyLinkLimit()
{
    s_current = m_outer;
}

bool PropertyLinkLimit::take(std::int64_t steps)
{
    if (!s_current)
        return true;
    const bool isEnough = steps <= s_current->m_left;
    s_current->m_left = isEnough ? s_current->m_left - steps : 0;
    return isEnough;
}

std::int64_t PropertyLinkLimit::countSteps(const PropertyBase& property)
{
    if (property.m_type != KindString && property.m_type != KindResource)
        return 1;
    const std::size_t size = static_cast<const StringProperty&>(property).m_value.size();
    return 1 + static_cast<std::int64_t>(size / s_bytesPerStep);
}

} // namespace helvantine
