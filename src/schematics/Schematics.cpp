// SPDX-License-Identifier: MIT
#include <helvantine/schematics/Schematics.h>

#include "SchematicsOrder.h"
#include "object/AddedCheck.h"

#include <helvantine/object/PropertyBase.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace helvantine
{

namespace
{

bool isVec4Kind(std::uint32_t kind)
{
    return kind == KindVec4 || kind == KindColor;
}

bool isIntKind(std::uint32_t kind)
{
    return kind == KindInt || kind == KindEnum;
}

/// What a target is left with: a text goes empty, numbers stay.
void emptyText(PropertyBase* target)
{
    if (target && (target->m_type == KindString || target->m_type == KindResource))
        target->fromString("");
}

bool isBefore(const SmartRef<PropertyLink>& a, const SmartRef<PropertyLink>& b)
{
    return std::less<>()(a.get(), b.get());
}

bool isLinkable(std::uint32_t source, std::uint32_t target)
{
    return source == target || (isVec4Kind(source) && isVec4Kind(target)) ||
           (isIntKind(source) && isIntKind(target));
}

std::vector<SmartRef<SchematicsNode>>::iterator findInList(std::vector<SmartRef<SchematicsNode>>& nodes,
                                                           const UniqueId& id)
{
    return std::find_if(nodes.begin(), nodes.end(),
                        [&](const SmartRef<SchematicsNode>& node) { return node && node->m_id == id; });
}

} // namespace

Schematics::Schematics() = default;

Schematics::~Schematics()
{
    // Links listen to the nodes' contexts, so they go first.
    eraseLinksWhere([](const SmartRef<PropertyLink>&) { return true; });
}

void Schematics::addNode(SchematicsNode* node)
{
    if (!canAdd(node, "node"))
        return;
    m_nodeMap[node->m_id] = node;
    m_nodes.emplace_back(node);
    rebuildOrder();
}

void Schematics::removeNode(SchematicsNode* node)
{
    const UniqueId id = node->m_id; // the lists may hold the last references
    m_nodeMap.erase(id);
    const auto found = findInList(m_nodes, id);
    if (found == m_nodes.end())
        return;
    m_nodes.erase(found);
    rebuildOrder();
}

SchematicsNode* Schematics::findNode(const UniqueId& id) const
{
    const auto found = m_nodeMap.find(id);
    return found != m_nodeMap.end() ? found->second.get() : nullptr;
}

PropertyBase* Schematics::findProperty(const UniqueId& id) const
{
    for (const SmartRef<SchematicsNode>& node : m_nodes) {
        PropertyBase* property = node ? node->findProperty(id) : nullptr;
        if (property)
            return property;
    }
    return nullptr;
}

void Schematics::moveNodeToBack(const UniqueId& id)
{
    const auto found = findInList(m_nodes, id);
    if (found != m_nodes.end())
        std::rotate(found, found + 1, m_nodes.end());
    else
        m_nodes.emplace_back();
}

bool Schematics::canAddLink(PropertyBase* source, PropertyBase* target)
{
    return !explainRefusal(source, target);
}

const char* Schematics::explainRefusal(const PropertyBase* source, const PropertyBase* target) const
{
    if (!source || !target)
        return "one of the two is null";
    if (source->m_id == target->m_id)
        return "both are the same property";
    for (const LinkEnd* end = target->m_linkEnds; end; end = end->next) {
        if (end->link->m_target == target && end->link->m_graph == this)
            return "the target has a link already";
    }
    return isLinkable(source->m_type, target->m_type) ? nullptr : "their kinds don't fit";
}

void Schematics::addLink(PropertyLink* link)
{
    if (!canAdd(link, "link"))
        return;
    if (!link->m_source) // an end was destroyed since
        return;
    appendLink(link);
    link->m_source->copyTo(link->m_target, true, true);
    rebuildOrder();
}

void Schematics::appendLink(PropertyLink* link)
{
    m_links.emplace_back(link);
    link->m_graph = this;
}

template <class Predicate>
void Schematics::eraseLinksWhere(Predicate isMeant)
{
    std::erase_if(m_links, [&](const SmartRef<PropertyLink>& link) {
        const bool isErased = isMeant(link);
        if (isErased)
            link->m_graph = nullptr;
        return isErased;
    });
}

/// An end of the link is destroyed, maybe of many others in a row: the order, which is still right, is made anew
/// before the next tick.
void Schematics::dropLink(PropertyLink& link)
{
    m_orderStale = true;
    eraseLinksWhere([&](const SmartRef<PropertyLink>& entry) { return entry.get() == &link; });
}

void Schematics::removeLink(PropertyBase* source, PropertyBase* target)
{
    const auto found = std::find_if(m_links.begin(), m_links.end(), [&](const SmartRef<PropertyLink>& link) {
        return link->m_source == source && link->m_target == target;
    });
    if (found == m_links.end())
        return;
    const SmartRef<PropertyLink> link = *found;
    emptyText(target);
    // Searched again: whoever heard of the empty text may have changed the list.
    eraseLinksWhere([&](const SmartRef<PropertyLink>& entry) { return entry == link; });
    rebuildOrder();
}

void Schematics::removeLinksTo(PropertyBase* property)
{
    std::vector<SmartRef<PropertyLink>> links;
    std::copy_if(m_links.begin(), m_links.end(), std::back_inserter(links),
                 [&](const SmartRef<PropertyLink>& link) {
                     return link->m_source == property || link->m_target == property;
                 });
    for (const SmartRef<PropertyLink>& link : links)
        emptyText(link->m_target);
    // Whoever heard of an empty text may have changed the list.
    std::sort(links.begin(), links.end(), isBefore);
    eraseLinksWhere([&](const SmartRef<PropertyLink>& link) {
        return std::binary_search(links.begin(), links.end(), link, isBefore);
    });
    rebuildOrder();
}

void Schematics::removeAllOf(std::vector<const PropertyContext*> owners)
{
    std::sort(owners.begin(), owners.end(), std::less<>());
    const auto isOwner = [&](const PropertyContext* context) {
        return std::binary_search(owners.begin(), owners.end(), context, std::less<>());
    };
    const auto isMeant = [&](const SmartRef<PropertyLink>& link) {
        return isOwner(link->m_source->m_context) || isOwner(link->m_target->m_context);
    };
    std::vector<SmartRef<PropertyLink>> links;
    std::copy_if(m_links.begin(), m_links.end(), std::back_inserter(links), isMeant);
    for (const SmartRef<PropertyLink>& link : links)
        emptyText(link->m_target);
    eraseLinksWhere(isMeant);

    const std::vector<SmartRef<SchematicsNode>> nodes = m_nodes; // none dies before the lists are right
    std::erase_if(m_nodes, [&](const SmartRef<SchematicsNode>& node) {
        return node && isOwner(getLinkedContext(*node));
    });
    std::erase_if(m_nodeMap, [&](const auto& entry) { return isOwner(getLinkedContext(*entry.second)); });
    rebuildOrder();
}

Schematics::Batch::Batch(Schematics& graph)
    : m_graph(graph), m_wasSuspended(std::exchange(graph.m_suspended, true))
{
}

Schematics::Batch::~Batch()
{
    m_graph.m_suspended = m_wasSuspended;
    m_graph.m_orderStale = true;
}

void Schematics::update(FxUpdateContext& context)
{
    if (m_orderStale)
        rebuildOrder();
    m_updating = true;
    for (std::size_t i = m_sortedNodes.size(); i-- > 0;) {
        if (SchematicsNode* node = m_sortedNodes[i].get())
            node->update(context);
    }
    m_updating = false;
    if (m_orderStale)
        rebuildOrder();
}

void Schematics::rebuildOrder()
{
    if (m_suspended)
        return;
    m_orderStale = m_updating;
    if (!m_updating)
        m_sortedNodes = sortConsumersFirst(m_nodes, m_links);
}

} // namespace helvantine
