// SPDX-License-Identifier: MIT
// Links that an editor would refuse, and rings of them.
#include "DocumentCheck.h"
#include "ObjectPath.h"

#include <helvantine/object/Object.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>

namespace helvantine::tool
{

namespace
{

using Findings = std::vector<Finding>;

void checkLinks(const Composition& composition, Findings& findings)
{
    // The rules for two properties are asked of a graph without links, the one about taken targets here: of
    // two links to one property the first is right.
    Schematics rules;
    std::set<const PropertyBase*> taken;
    for (const SmartRef<PropertyLink>& link : composition.m_schematics->m_links) {
        std::string found;
        if (!rules.canAddLink(link->m_source, link->m_target))
            found = "its kinds don't fit, or it leads to itself";
        else if (!taken.insert(link->m_target).second)
            found = "its target has another link already";
        if (!found.empty())
            findings.push_back({"link-refused", getPath(composition, *link->m_target),
                                "link from \"" + getPath(composition, *link->m_source) + "\": " + found,
                                "remove the link"});
    }
}

/// The objects of a graph that links relate, in strongly connected parts: each part of more than one object is
/// a tangle of rings.
///
/// Walks with a stack of its own: chains are as long as a file makes them.
class RingSearch
{
public:
    explicit RingSearch(const std::vector<SmartRef<PropertyLink>>& links)
    {
        for (const SmartRef<PropertyLink>& link : links) {
            const Object* target = getOwner(*link->m_target);
            m_consumers[target];
            m_consumers[getOwner(*link->m_source)].push_back(target);
        }
    }

    std::vector<std::vector<const Object*>> find()
    {
        // The walk adds no entry: the constructor has made one for each end.
        for (const auto& [object, consumers] : m_consumers) {
            if (!m_places.contains(object))
                walk(object);
        }
        return std::move(m_rings);
    }

private:
    struct Place
    {
        std::uint32_t order;  ///< in which it was reached
        std::uint32_t lowest; ///< order that is reached from here, within the open part
        bool isOpen;
    };
    struct Step
    {
        const Object* object;
        std::size_t nextConsumer;
    };

    void enter(const Object* object)
    {
        const auto order = static_cast<std::uint32_t>(m_places.size());
        m_places[object] = {order, order, true};
        m_open.push_back(object);
        m_steps.push_back({object, 0});
    }

    void walk(const Object* start)
    {
        enter(start);
        while (!m_steps.empty()) {
            Step& step = m_steps.back();
            const std::vector<const Object*>& consumers = m_consumers[step.object];
            if (step.nextConsumer == consumers.size()) {
                leave(step.object);
                continue;
            }
            const Object* consumer = consumers[step.nextConsumer++];
            const auto reached = m_places.find(consumer);
            if (reached == m_places.end())
                enter(consumer);
            else if (reached->second.isOpen)
                lower(step.object, reached->second.order);
        }
    }

    void lower(const Object* object, std::uint32_t order)
    {
        Place& place = m_places[object];
        place.lowest = std::min(place.lowest, order);
    }

    void leave(const Object* object)
    {
        m_steps.pop_back();
        const Place place = m_places[object];
        if (!m_steps.empty())
            lower(m_steps.back().object, place.lowest);
        if (place.lowest != place.order)
            return;
        // All that was opened since belongs together.
        const auto first = std::find(m_open.rbegin(), m_open.rend(), object).base() - 1;
        for (auto entry = first; entry != m_open.end(); ++entry)
            m_places[*entry].isOpen = false;
        if (m_open.end() - first > 1)
            m_rings.emplace_back(first, m_open.end());
        m_open.erase(first, m_open.end());
    }

    std::map<const Object*, std::vector<const Object*>> m_consumers;
    std::map<const Object*, Place> m_places;
    std::vector<const Object*> m_open;
    std::vector<Step> m_steps;
    std::vector<std::vector<const Object*>> m_rings;
};

void checkRings(const Composition& composition, Findings& findings)
{
    constexpr std::size_t mostNamed = 8;
    for (const auto& ring : RingSearch(composition.m_schematics->m_links).find()) {
        std::string names;
        for (std::size_t i = 0; i < std::min(ring.size(), mostNamed); ++i)
            names += (i ? ", \"" : "\"") + getPath(composition, *ring[i]) + '"';
        if (ring.size() > mostNamed)
            names += " and " + std::to_string(ring.size() - mostNamed) + " more";
        findings.push_back({"graph-cycle", getPath(composition, *ring.front()),
                            "wait for each other in a ring, so that they run in any order: " + names,
                            "remove a link between them"});
    }
}

} // namespace

void checkGraph(const Composition& composition, std::vector<Finding>& findings)
{
    checkLinks(composition, findings);
    checkRings(composition, findings);
}

} // namespace helvantine::tool
