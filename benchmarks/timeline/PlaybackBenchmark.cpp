// SPDX-License-Identifier: MIT
// What a tick costs: of curves against a flat loop over the same cubics, and of a long timeline against one that
// holds only what runs.
#include "support/Ratio.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/host/Application.h>
#include <helvantine/object/Property.h>
#include <helvantine/testsupport/AllocationCount.h>
#include <helvantine/timeline/Layer.h>

#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace helvantine::bench
{

namespace
{

constexpr int g_keyCount = 16;
constexpr float g_keyDistance = 0.5f;
constexpr float g_frameRate = 60.0f;
constexpr int g_playedFrames = static_cast<int>((g_keyCount - 1) * g_keyDistance * g_frameRate);

float valueAt(int property, int key)
{
    return static_cast<float>((property * 7 + key * 13) % 32);
}

/// Per second, at a key; both tangents are the same.
float tangentAt(int property, int key)
{
    return static_cast<float>((property * 5 + key * 3) % 16) - 8.0f;
}

/// What the benchmarks ask of effects with animated floats, however many those are.
class AnimatedLayer : public Layer
{
public:
    virtual float getSum() const = 0;

protected:
    static Keyframe* makeCurve(int property)
    {
        auto* curve = new Keyframe(1);
        for (int i = 0; i < g_keyCount; ++i) {
            Key* key = curve->createKey();
            key->time = static_cast<float>(i) * g_keyDistance;
            key->mode = KeyModeBezier;
            key->values[0] = valueAt(property, i);
            key->vectorA.x = key->vectorB.x = tangentAt(property, i);
            curve->addKey(key, false);
        }
        curve->sort();
        return curve;
    }
};

/// An effect with animated floats and nothing else; they are members by value, as in every effect.
template <std::size_t count>
class AnimatedEffect : public AnimatedLayer
{
public:
    explicit AnimatedEffect(int firstProperty) : AnimatedEffect(std::make_index_sequence<count>())
    {
        for (FloatProperty& property : m_floats) {
            addProperty(&property);
            property.setKeyframe(makeCurve(firstProperty++));
        }
    }

    float getSum() const override
    {
        float sum = 0.0f;
        for (const FloatProperty& property : m_floats)
            sum += property.m_value;
        return sum;
    }

private:
    template <std::size_t... indices>
    explicit AnimatedEffect(std::index_sequence<indices...>)
        : m_floats{(static_cast<void>(indices), FloatProperty(this, KindFloat, "value"))...}
    {
    }

    FloatProperty m_floats[count];
};

/// The cubics of the same curves in flat arrays. Each remembers its segment's coefficients.
class FlatCurves
{
public:
    explicit FlatCurves(int count) : m_keys(count), m_segments(count), m_values(count)
    {
        for (int i = 0; i < count; ++i) {
            for (int k = 0; k < g_keyCount; ++k)
                m_keys[i][k] = {valueAt(i, k), tangentAt(i, k)};
        }
    }

    void evaluate(float time)
    {
        for (std::size_t i = 0; i < m_segments.size(); ++i) {
            Segment& segment = m_segments[i];
            if (time < segment.begin || time >= segment.end)
                prepare(i, time);
            const float u = (time - segment.begin) * (1.0f / g_keyDistance);
            m_values[i] = segment.c[0] + u * (segment.c[1] + u * (segment.c[2] + u * segment.c[3]));
        }
    }

    float getSum() const
    {
        float sum = 0.0f;
        for (const float value : m_values)
            sum += value;
        return sum;
    }

private:
    struct FlatKey
    {
        float value, tangent;
    };
    struct Segment
    {
        float begin = 0.0f, end = 0.0f;
        float c[4] = {};
    };

    void prepare(std::size_t i, float time)
    {
        const int k = std::min(static_cast<int>(time / g_keyDistance), g_keyCount - 2);
        const FlatKey& from = m_keys[i][k];
        const FlatKey& to = m_keys[i][k + 1];
        const float rise = to.value - from.value;
        const float leaving = from.tangent * g_keyDistance;
        const float arriving = to.tangent * g_keyDistance;
        const float begin = static_cast<float>(k) * g_keyDistance;
        m_segments[i] = {
            begin,
            begin + g_keyDistance,
            {from.value, leaving, 3 * rise - 2 * leaving - arriving, leaving + arriving - 2 * rise}};
    }

    std::vector<std::array<FlatKey, g_keyCount>> m_keys;
    std::vector<Segment> m_segments;
    std::vector<float> m_values;
};

/// A runtime without a device and an empty document: effects ask it for the frame rate.
struct Runtime
{
    Runtime() { application.newDocument(nullptr); }

    Application application{"", false};
};

void tick(Effect& root, int frame)
{
    FxUpdateContext context;
    context.frame = context.relativeFrame = frame;
    context.time = context.relativeTime = static_cast<float>(frame) / g_frameRate;
    root.update(context);
}

SmartRef<Effect> makeLayer()
{
    SmartRef<Effect> layer(new Layer);
    layer->onInit();
    layer->setEnd(g_playedFrames);
    return layer;
}

template <std::size_t count>
void addAnimated(Effect& parent, int start, int firstProperty)
{
    auto* effect = new AnimatedEffect<count>(firstProperty);
    parent.addObject(effect, -1);
    effect->onInit();
    effect->setStart(start);
    effect->setEnd(start + g_playedFrames);
}

/// Plays all 15 segments of the curves in each measurement. A curve stays in one for 30 ticks.
template <std::size_t perEffect>
void playCurves(benchmark::State& state)
{
    constexpr int propertyCount = 10000;
    const Runtime runtime;
    const SmartRef<Effect> root = makeLayer();
    for (int first = 0; first < propertyCount; first += perEffect)
        addAnimated<perEffect>(*root, 0, first);
    FlatCurves flat(propertyCount);
    for (int frame = 0; frame < 2; ++frame) // lists of what is animated are made, effects start
        tick(*root, frame);

    const auto play = [](auto&& evaluate) {
        for (int frame = 0; frame < g_playedFrames; ++frame)
            evaluate(frame);
    };
    std::size_t allocated = 0;
    compare(
        state, [&] { play([&](int frame) { flat.evaluate(static_cast<float>(frame) / g_frameRate); }); },
        [&] {
            const std::size_t before = test::countAllocations();
            play([&](int frame) { tick(*root, frame); });
            allocated += test::countAllocations() - before;
        });
    state.counters["allocations"] = static_cast<double>(allocated);

    float sum = 0.0f;
    for (const SmartRef<Object>& child : root->m_children)
        sum += static_cast<const AnimatedLayer&>(*child).getSum();
    if (std::abs(sum - flat.getSum()) > 1e-3f * std::abs(sum))
        state.SkipWithError("the flat loop computes something else");
}

/// Layers that hold what runs now and, if wanted, nine times as much that comes later.
SmartRef<Effect> makeTimeline(bool withInactive)
{
    SmartRef<Effect> root = makeLayer();
    for (int l = 0; l < 100; ++l) {
        const SmartRef<Effect> layer = makeLayer();
        root->addObject(layer.get(), -1);
        for (int i = 0; i < 100; ++i) {
            const bool runs = i % 10 == 0;
            if (runs || withInactive)
                addAnimated<4>(*layer, runs ? 0 : g_playedFrames, i);
        }
    }
    return root;
}

void tickLongTimeline(benchmark::State& state)
{
    const Runtime runtime;
    const SmartRef<Effect> active = makeTimeline(false);
    const SmartRef<Effect> whole = makeTimeline(true);
    int activeFrame = 0;
    int wholeFrame = 0;
    compare(
        state, [&] { tick(*active, activeFrame++ % g_playedFrames); },
        [&] { tick(*whole, wholeFrame++ % g_playedFrames); });
}

BENCHMARK(playCurves<1>)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(playCurves<10>)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(playCurves<20>)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(playCurves<100>)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(tickLongTimeline)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace helvantine::bench
