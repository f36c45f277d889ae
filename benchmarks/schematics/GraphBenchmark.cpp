// SPDX-License-Identifier: MIT
// What a tick of a large graph costs: 10,000 nodes in chains of 100, against a flat loop over the same operations.
#include "support/Ratio.h"

#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/testsupport/AllocationCount.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace helvantine::bench
{

namespace
{

constexpr std::size_t g_chainCount = 100;
constexpr std::size_t g_chainLength = 100;
constexpr std::size_t g_nodeCount = g_chainCount * g_chainLength;

PropertyBase& getInput(const SchematicsNode& node, std::size_t index)
{
    return *node.m_inputGroups.at(0)->m_properties.at(index);
}

PropertyBase& getOutput(const SchematicsNode& node)
{
    return *node.m_outputGroups.at(0)->m_properties.at(0);
}

/// A float handed on and on.
struct Values
{
    using Value = float;

    static SchematicsNode* makeNode(std::size_t) { return new FloatNode; }
    static PropertyBase& getSource(const SchematicsNode& time)
    {
        return *time.m_outputGroups.at(0)->findProperty("Output Float");
    }
    static Value start(float time) { return time; }
    static Value compute(std::size_t, Value value) { return value; }
};

/// Four kinds of arithmetic by turns. They don't settle: each change of the first value changes the last.
struct Arithmetic
{
    using Value = Vec4;

    static constexpr Vec4 s_seconds[] = {
        {0.5f, 1, 2, 4}, {0.25f, 1, 0.5f, 2}, {1.5f, 0.5f, 1.25f, 0.75f}, {2, 1, 1, 1}};

    static SchematicsNode* makeNode(std::size_t index)
    {
        SchematicsNode* node = nullptr;
        switch (index % 4) {
        case 0:
            node = new AddNode;
            break;
        case 1:
            node = new SubNode;
            break;
        case 2:
            node = new MulNode;
            break;
        default:
            node = new DivNode;
            break;
        }
        static_cast<Vec4Property&>(getInput(*node, 1)) = s_seconds[index % 4];
        return node;
    }
    static PropertyBase& getSource(const SchematicsNode& time)
    {
        return *time.m_outputGroups.at(0)->findProperty("Output Vec4");
    }
    static Value start(float time) { return {time, time, time, time}; }
    static Value compute(std::size_t index, const Value& value)
    {
        using namespace operations;
        const Vec4& second = s_seconds[index % 4];
        switch (index % 4) {
        case 0:
            return PerComponent<Add>::compute(value, second);
        case 1:
            return PerComponent<Subtract>::compute(value, second);
        case 2:
            return PerComponent<Multiply>::compute(value, second);
        default:
            return PerComponent<Divide>::compute(value, second);
        }
    }
};

/// The clock and chains that begin at it. Nodes are made in a random order: those of a chain lie far apart, as in a
/// graph that has grown.
template <class Kind>
class ChainGraph
{
public:
    ChainGraph()
    {
        m_graph.m_suspended = true; // the order is made once
        m_graph.addNode(m_time);
        const std::vector<SchematicsNode*> nodes = makeNodes();
        for (std::size_t i = 0; i < g_nodeCount; ++i) {
            PropertyBase& source =
                i % g_chainLength > 0 ? getOutput(*nodes[i - 1]) : Kind::getSource(*m_time);
            m_graph.addLink(new PropertyLink(&source, &getInput(*nodes[i], 0)));
        }
        for (std::size_t i = g_chainLength; i <= g_nodeCount; i += g_chainLength)
            m_ends.push_back(&getOutput(*nodes[i - 1]));
        m_graph.m_suspended = false;
        m_graph.removeLinksTo(nullptr); // removes nothing, and makes the order
    }

    void tick(float time)
    {
        FxUpdateContext context;
        context.time = time;
        m_graph.update(context);
    }

    typename Kind::Value getEnd(std::size_t chain) const
    {
        return static_cast<const ValueProperty<typename Kind::Value>*>(m_ends[chain])->m_value;
    }

private:
    std::vector<SchematicsNode*> makeNodes()
    {
        std::vector<std::size_t> order(g_nodeCount);
        std::iota(order.begin(), order.end(), 0u);
        std::shuffle(order.begin(), order.end(), std::mt19937(1));
        std::vector<SchematicsNode*> nodes(g_nodeCount);
        for (const std::size_t i : order) {
            nodes[i] = Kind::makeNode(i % g_chainLength);
            m_graph.addNode(nodes[i]);
        }
        return nodes;
    }

    Schematics m_graph;
    TimeNode* m_time = new TimeNode;
    std::vector<PropertyBase*> m_ends;
};

/// The same values in one array.
template <class Kind>
class FlatChains
{
public:
    void tick(float time)
    {
        for (std::size_t chain = 0; chain < g_chainCount; ++chain) {
            typename Kind::Value value = Kind::start(time);
            for (std::size_t i = 0; i < g_chainLength; ++i)
                m_values[chain * g_chainLength + i] = value = Kind::compute(i, value);
        }
        benchmark::DoNotOptimize(m_values.data());
        benchmark::ClobberMemory();
    }

    typename Kind::Value getEnd(std::size_t chain) const { return m_values[(chain + 1) * g_chainLength - 1]; }

private:
    std::vector<typename Kind::Value> m_values = std::vector<typename Kind::Value>(g_nodeCount);
};

template <class Kind, bool changing>
void tickGraph(benchmark::State& state)
{
    ChainGraph<Kind> graph;
    FlatChains<Kind> flat;
    int frame = 0;
    int flatFrame = 0;
    const auto nextTime = [](int& number) { return static_cast<float>(changing ? ++number : 1) / 60.0f; };
    graph.tick(nextTime(frame));
    flat.tick(nextTime(flatFrame));

    std::size_t allocated = 0;
    compare(
        state, [&] { flat.tick(nextTime(flatFrame)); },
        [&] {
            const float time = nextTime(frame);
            const std::size_t before = test::countAllocations();
            graph.tick(time);
            allocated += test::countAllocations() - before;
        });

    state.counters["ns_per_node"] = state.counters["subject_us"] * 1e3 / g_nodeCount;
    state.counters["allocations"] = static_cast<double>(allocated);
    for (std::size_t chain = 0; chain < g_chainCount; ++chain) {
        if (graph.getEnd(chain) != flat.getEnd(chain))
            state.SkipWithError("the flat loop computes something else");
    }
}

constexpr bool g_changing = true;
constexpr bool g_unchanged = false;

BENCHMARK(tickGraph<Values, g_changing>)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(tickGraph<Values, g_unchanged>)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(tickGraph<Arithmetic, g_changing>)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(tickGraph<Arithmetic, g_unchanged>)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace helvantine::bench
