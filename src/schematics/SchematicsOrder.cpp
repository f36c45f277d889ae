// SPDX-License-Identifier: MIT
#include "SchematicsOrder.h"

#include <helvantine/object/PropertyBase.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/timeline/Effect.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>

namespace helvantine
{

namespace
{

using Nodes = std::vector<SmartRef<SchematicsNode>>;
using Links = std::vector<SmartRef<PropertyLink>>;

/// What links run between: the context of a node or of an effect, which stands for the effect's node.
using Context = const PropertyContext*;

/// The contexts of a graph as numbers, and for each of them those it takes values from.
class DependencyGraph
{
public:
    DependencyGraph(const Nodes& nodes, const Links& links);

    std::uint32_t indexOf(Context context) const
    {
        const auto found = std::lower_bound(m_contexts.begin(), m_contexts.end(), context, std::less<>());
        return static_cast<std::uint32_t>(found - m_contexts.begin());
    }

    /// A number for each context, greater than the numbers of all that it depends on. `starts` says in
    /// which order contexts come that nothing relates.
    std::vector<std::uint32_t> rankProducersFirst(const std::vector<std::uint32_t>& starts) const;

private:
    std::vector<Context> m_contexts;        ///< by address
    std::vector<std::uint32_t> m_firsts;    ///< by context: where its producers begin; one more at the end
    std::vector<std::uint32_t> m_producers; ///< side by side for each context, in the order of the links
};

DependencyGraph::DependencyGraph(const Nodes& nodes, const Links& links)
{
    for (const SmartRef<SchematicsNode>& node : nodes)
        m_contexts.push_back(getLinkedContext(*node));
    for (const SmartRef<PropertyLink>& link : links) {
        m_contexts.push_back(link->m_source->m_context);
        m_contexts.push_back(link->m_target->m_context);
    }
    std::sort(m_contexts.begin(), m_contexts.end(), std::less<>());
    m_contexts.erase(std::unique(m_contexts.begin(), m_contexts.end()), m_contexts.end());

    // Counted, summed up, then filled in from the back of each range.
    m_firsts.assign(m_contexts.size() + 1, 0);
    for (const SmartRef<PropertyLink>& link : links)
        ++m_firsts[indexOf(link->m_target->m_context)];
    std::partial_sum(m_firsts.begin(), m_firsts.end(), m_firsts.begin());
    m_producers.resize(links.size());
    for (auto link = links.rbegin(); link != links.rend(); ++link)
        m_producers[--m_firsts[indexOf((*link)->m_target->m_context)]] =
            indexOf((*link)->m_source->m_context);
}

std::vector<std::uint32_t> DependencyGraph::rankProducersFirst(const std::vector<std::uint32_t>& starts) const
{
    struct Step
    {
        std::uint32_t context;
        std::uint32_t nextProducer;
    };
    std::vector<std::uint32_t> ranks(m_contexts.size(), 0);
    std::vector<bool> entered(m_contexts.size(), false);
    std::vector<Step> stack; // a stack of its own: chains are as long as an author or a file makes them
    std::uint32_t rank = 0;
    const auto enter = [&](std::uint32_t context) {
        // Back at a context that is still on the stack: a ring, which is cut here.
        if (entered[context])
            return;
        entered[context] = true;
        stack.push_back({context, m_firsts[context]});
    };
    for (const std::uint32_t start : starts) {
        enter(start);
        while (!stack.empty()) {
            Step& step = stack.back();
            if (step.nextProducer < m_firsts[step.context + 1]) {
                enter(m_producers[step.nextProducer++]);
            } else {
                ranks[step.context] = ++rank;
                stack.pop_back();
            }
        }
    }
    return ranks;
}

} // namespace

Context getLinkedContext(const SchematicsNode& node)
{
    const auto* effectNode = castTo<const EffectNode>(&node);
    if (effectNode && effectNode->m_effect)
        return effectNode->m_effect;
    return &node;
}

Nodes sortConsumersFirst(const Nodes& nodes, const Links& links)
{
    Nodes sorted;
    std::copy_if(nodes.begin(), nodes.end(), std::back_inserter(sorted),
                 [](const SmartRef<SchematicsNode>& node) { return bool(node); });
    const DependencyGraph graph(sorted, links);
    std::vector<std::uint32_t> starts;
    for (const SmartRef<SchematicsNode>& node : sorted)
        starts.push_back(graph.indexOf(getLinkedContext(*node)));
    const std::vector<std::uint32_t> ranks = graph.rankProducersFirst(starts);

    std::vector<std::uint32_t> order(sorted.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return ranks[starts[a]] < ranks[starts[b]]; });
    Nodes result;
    result.reserve(sorted.size());
    for (auto index = order.rbegin(); index != order.rend(); ++index)
        result.push_back(sorted[*index]);
    return result;
}

} // namespace helvantine
