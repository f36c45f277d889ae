// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/PropertyLink.h>
#include <helvantine/schematics/SchematicsNode.h>

#include <vector>

namespace helvantine
{

/// The context that a node's links end at: the effect's for an effect's node, the node's own otherwise.
const PropertyContext* getLinkedContext(const SchematicsNode& node);

/// The nodes in an order in which each stands before all that it depends on, directly or through effects.
///
/// Nodes that depend on each other in a ring stand in any order. Otherwise the order depends on that of the
/// nodes and of the links alone; walked from the back, nodes that nothing relates come as they do in
/// `nodes`. Null entries are left out. Takes time in proportion to the graph, times a logarithm.
std::vector<SmartRef<SchematicsNode>> sortConsumersFirst(const std::vector<SmartRef<SchematicsNode>>& nodes,
                                                         const std::vector<SmartRef<PropertyLink>>& links);

} // namespace helvantine
