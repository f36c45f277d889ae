// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyLink.h>
#include <helvantine/schematics/SchematicsNode.h>

#include <map>
#include <vector>

namespace helvantine
{

class Composition;
class Effect;

/// The node graph of a composition: nodes, the links between properties, and the order of evaluation.
///
/// - A link goes from property to property; values travel along it by themselves. The graph only calls each
///   node, producers before consumers, so one tick carries a value through a whole chain.
/// - A link at an effect ends at the effect's own property. Nodes wait for what comes to them through
///   effects.
/// - Whatever the order in which nodes and links came, the order is right unless links form a ring; nodes of
///   a ring run in any order.
/// - A link whose source or target is destroyed leaves the graph by itself.
/// - The caller asks canAddLink first, and removes the links of a node before the node. Composition::addLink,
///   removeEffect and removeNode do.
class HELVANTINE_FX_API Schematics
{
public:
    Schematics();
    virtual ~Schematics();

    void addNode(SchematicsNode* node);
    void removeNode(SchematicsNode* node);                ///< by id; links are not touched
    SchematicsNode* findNode(const UniqueId& id) const;   ///< null if absent
    PropertyBase* findProperty(const UniqueId& id) const; ///< of any node; null if absent
    /// Moves a node to the end of the list, the order of the file. An unknown id appends a null entry:
    /// deliberate, callers pass known ids.
    void moveNodeToBack(const UniqueId& id);

    /// False for a property and itself, for a target that has a link, and for kinds that don't fit. 4-vectors
    /// and colours fit, so do integers and enumerations; rings are allowed.
    bool canAddLink(PropertyBase* source, PropertyBase* target);
    /// Why canAddLink says no, in words; null where it says yes.
    const char* explainRefusal(const PropertyBase* source, const PropertyBase* target) const;
    /// Takes a reference and copies the value over at once, told even if equal.
    void addLink(PropertyLink* link);
    /// Drops the first link between the two. A text or resource target goes empty, others keep their value.
    void removeLink(PropertyBase* source, PropertyBase* target);
    void removeLinksTo(PropertyBase* property); ///< all at either end
    /// Takes out, in one pass, all that belongs to these effects and nodes: the links at either end of their
    /// properties, and their nodes.
    void removeAllOf(std::vector<const PropertyContext*> owners);

    /// While one lives, changes don't rebuild the order; the next tick does. For many changes in a row.
    class HELVANTINE_FX_API Batch
    {
    public:
        explicit Batch(Schematics& graph);
        ~Batch();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

    private:
        Schematics& m_graph;
        bool m_wasSuspended;
    };

    /// Runs every node once. A change of nodes or links that a node makes takes effect behind the walk.
    void update(FxUpdateContext& context);

    void serialize(FxSerializer& serializer, Composition* composition);

    std::map<UniqueId, SmartRef<SchematicsNode>> m_nodeMap;
    std::vector<SmartRef<SchematicsNode>> m_nodes;       ///< in the order of the file
    std::vector<SmartRef<PropertyLink>> m_links;         ///< in order of addition
    bool m_suspended = false;                            ///< while set, the order is not rebuilt
    std::vector<SmartRef<SchematicsNode>> m_sortedNodes; ///< consumers first: walked from the back

private:
    friend class PropertyLink;

    void appendLink(PropertyLink* link);
    void dropLink(PropertyLink& link);
    template <class Predicate>
    void eraseLinksWhere(Predicate isMeant);
    void rebuildOrder();
    void writeNodes(FxSerializer& serializer);
    void writeLinks(FxSerializer& serializer);
    void readNodes(FxSerializer& serializer, const Composition& composition);
    void readNode(FxSerializer& serializer, const std::map<UniqueId, Effect*>& effects);
    void readLinks(FxSerializer& serializer, const Composition& composition);

    bool m_updating = false;
    bool m_orderStale = false;
};

} // namespace helvantine
