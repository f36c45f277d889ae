// SPDX-License-Identifier: MIT
#include <helvantine/core/Report.h>
#include <helvantine/object/Property.h>
#include <helvantine/object/PropertyLink.h>
#include <helvantine/testsupport/AllocationCount.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace helvantine
{

namespace
{

constexpr float s_nan = std::numeric_limits<float>::quiet_NaN();

using Log = std::vector<int>;
using Links = std::vector<std::unique_ptr<PropertyLink>>;

/// A context of its own, which adds nothing to the telling.
struct Plain : PropertyContext
{
    FloatProperty value{this, KindFloat, "Value"};
};

/// One that acts behind it.
struct Acting : Plain
{
    void onPropertyChanged(PropertyBase* property) override
    {
        PropertyContext::onPropertyChanged(property);
        if (act)
            act();
    }

    std::function<void()> act;
};

struct Listener final : PropertyListener
{
    explicit Listener(std::function<void()> toDo) : act(std::move(toDo)) {}
    void onPropertyChanged(PropertyBase*) override { act(); }

    std::function<void()> act;
};

void connect(Links& links, PropertyBase& source, PropertyBase& target)
{
    links.push_back(std::make_unique<PropertyLink>(&source, &target));
}

template <class Context>
Links makeRow(std::deque<Context>& contexts)
{
    Links links;
    for (std::size_t i = 1; i < contexts.size(); ++i)
        connect(links, contexts[i - 1].value, contexts[i].value);
    return links;
}

std::size_t countArrivals(const std::deque<Acting>& contexts, float value)
{
    return static_cast<std::size_t>(
        std::count_if(contexts.begin(), contexts.end(),
                      [&](const Acting& context) { return context.value.m_value == value; }));
}

std::vector<std::string> takeTexts()
{
    std::vector<std::string> texts;
    for (const Problem& problem : takeProblems())
        texts.push_back(problem.module + ": " + problem.text);
    return texts;
}

/// Contexts of both kinds with links from each to later ones, and listeners between them; all write down when they are
/// told.
struct Network
{
    explicit Network(unsigned seed) : random(seed), ways(s_size)
    {
        for (int i = 0; i < s_size; ++i) {
            if (random() % 3 == 0) {
                auto acting = std::make_unique<Acting>();
                acting->act = [this, i] { log.push_back(s_size + i); };
                contexts.push_back(std::move(acting));
            } else {
                contexts.push_back(std::make_unique<Plain>());
            }
        }
        for (int i = 1; i < s_size; ++i) { // one way leads to each
            const auto source = random() % static_cast<unsigned>(i);
            if (random() % 2)
                listen(static_cast<int>(source));
            connect(links, contexts[source]->value, contexts[static_cast<std::size_t>(i)]->value);
            ways[source].push_back(i);
        }
    }

    void listen(int at)
    {
        Listener& listener = listeners.emplace_back([this, at] { log.push_back(-1 - at); });
        Plain& context = *contexts[static_cast<std::size_t>(at)];
        context.addListener(context.value.m_id, &listener);
        ways[static_cast<std::size_t>(at)].push_back(-1);
    }

    /// What a change of a context's value should write down.
    void expect(int at, Log& expected) const
    {
        for (const int way : ways[static_cast<std::size_t>(at)]) {
            if (way < 0)
                expected.push_back(-1 - at);
            else
                expect(way, expected);
        }
        if (dynamic_cast<const Acting*>(contexts[static_cast<std::size_t>(at)].get()))
            expected.push_back(s_size + at);
    }

    static constexpr int s_size = 60;
    std::mt19937 random;
    Log log;
    std::vector<std::vector<int>> ways; ///< by context: those its links lead to, and -1 for a listener
    std::vector<std::unique_ptr<Plain>> contexts;
    std::deque<Listener> listeners;
    Links links;
};

} // namespace

TEST(PropertyLink, ArrivesAtTheEndOfALongRow)
{
    std::deque<Plain> contexts(100001);
    Links links = makeRow(contexts);
    contexts.front().value = 4.0f;
    EXPECT_EQ(contexts.back().value.m_value, 4.0f);

    const std::size_t before = test::countAllocations();
    contexts.front().value = 5.0f;
    EXPECT_EQ(test::countAllocations(), before);
    EXPECT_EQ(contexts.back().value.m_value, 5.0f);

    Acting sender; // a change that begins within another
    sender.act = [&] { contexts.front().value = 6.0f; };
    PropertyLink first(&contexts.back().value, &sender.value);
    contexts[50000].value = 7.0f;
    EXPECT_EQ(contexts[49999].value.m_value, 6.0f);
    EXPECT_EQ(contexts.back().value.m_value, 6.0f);
}

TEST(PropertyLink, ArrivesAtAllOfAWideFanAndGoesInAnyOrder)
{
    for (const int order : {0, 1, 2}) {
        Plain source, hub, target;
        std::deque<FloatProperty> targets;
        Links links;
        connect(links, source.value, hub.value);
        for (int i = 0; i < 200000; ++i)
            connect(links, hub.value, targets.emplace_back(&target, KindFloat, "Target"));
        source.value = 2.0f;
        EXPECT_TRUE(
            std::all_of(targets.begin(), targets.end(), [](auto& end) { return end.m_value == 2.0f; }));

        // All but every hundredth go; in the order of making, against it, and anyhow.
        std::vector<std::size_t> dropped;
        for (std::size_t i = 1; i < links.size(); ++i)
            if (i % 100 != 0)
                dropped.push_back(i);
        if (order == 1)
            std::reverse(dropped.begin(), dropped.end());
        if (order == 2)
            std::shuffle(dropped.begin(), dropped.end(), std::mt19937(1));
        for (const std::size_t i : dropped)
            links[i] = nullptr;
        source.value = 3.0f;
        for (std::size_t i = 1; i < links.size(); ++i)
            ASSERT_EQ(targets[i - 1].m_value, links[i] ? 3.0f : 2.0f) << i;
        links.clear();
        EXPECT_TRUE(source.m_listeners.empty() && hub.m_listeners.empty());
    }
}

TEST(PropertyLink, TellsDepthFirstAndActsBehindAllThatListens)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        Network network(seed);
        Log expected;
        network.expect(0, expected);
        network.contexts[0]->value = 1.0f;
        ASSERT_EQ(network.log, expected) << "seed " << seed;
        network.contexts[0]->value = 1.0f;
        ASSERT_EQ(network.log.size(), expected.size()) << "the same again is no change";
    }
}

TEST(PropertyLink, IsPassedEightTimesByAChangeThatNeverSettlesAndToldOnce)
{
    takeProblems();
    for (const bool isActing : {false, true}) {
        std::deque<Acting> acting(3);
        std::deque<Plain> plain(3);
        const auto valueOf = [&](std::size_t i) -> FloatProperty& {
            return isActing ? acting[i].value : plain[i].value;
        };
        Links links;
        int heard = 0;
        Listener end([&] { ++heard; });
        valueOf(2).m_context->addListener(valueOf(2).m_id, &end);
        for (std::size_t i = 0; i < 3; ++i)
            connect(links, valueOf(i), valueOf((i + 1) % 3));
        valueOf(0) = 4.0f; // settles
        EXPECT_EQ(heard, 1);
        EXPECT_TRUE(takeProblems().empty());

        for (int change = 0; change < 6; ++change) {
            heard = 0;
            valueOf(static_cast<std::size_t>(change % 3)) = s_nan;
            EXPECT_GE(heard, 8);
            EXPECT_LE(heard, 9);
        }
        const char* text =
            R"(link: from "Value" to "Value" is passed 8 times by one change and left out from there: )"
            "its links form a ring that doesn't settle";
        EXPECT_EQ(takeTexts(), std::vector<std::string>{text});
        heard = 0;
        valueOf(0) = 5.0f; // each change begins anew
        EXPECT_EQ(heard, 1);

        // Each round twice as many: every link is passed eight times all the same.
        connect(links, valueOf(0), valueOf(1));
        connect(links, valueOf(1), valueOf(2));
        heard = 0;
        valueOf(0) = s_nan;
        EXPECT_EQ(heard, 16) << "by two links";
        valueOf(2).m_context->removeListener(&end);
        takeProblems();
    }
}

TEST(PropertyLink, RunsThroughAThousandContextsThatAct)
{
    takeProblems();
    std::deque<Acting> row(1001);
    Links links = makeRow(row);
    row.front().value = 1.0f;
    EXPECT_EQ(countArrivals(row, 1.0f), 1001u);
    EXPECT_TRUE(takeProblems().empty());

    std::deque<Acting> long_(1500);
    const Links more = makeRow(long_);
    for (const float value : {2.0f, 3.0f}) {
        long_.front().value = value;
        EXPECT_EQ(countArrivals(long_, value), 1001u);
    }
    EXPECT_EQ(takeTexts(),
              std::vector<std::string>{
                  R"(link: from "Value" to "Value" lies behind 1000 objects that act on one change, )"
                  "each within the other's, and is left out"});

    // Plain ones between them don't count.
    std::deque<Plain> plain(50000);
    Links way = makeRow(plain);
    connect(way, row.back().value, plain.front().value);
    row.front().value = 4.0f;
    EXPECT_EQ(plain.back().value.m_value, 4.0f);
    EXPECT_TRUE(takeProblems().empty());
}

TEST(PropertyLink, MayComeAndGoWhileAChangeRuns)
{
    Plain a, b, c, late;
    Links links;
    connect(links, a.value, b.value);
    connect(links, b.value, c.value);
    connect(links, b.value, late.value);
    connect(links, a.value, c.value);
    Listener editor([&] {
        links[2] = nullptr; // in a list further down, and in one further up
        links[3] = nullptr;
        connect(links, b.value, a.value);
        a.value = 9.0f; // within the change
    });
    c.addListener(c.value.m_id, &editor);
    a.value = 1.0f;
    EXPECT_EQ(b.value.m_value, 9.0f);
    EXPECT_EQ(c.value.m_value, 9.0f);
    EXPECT_FALSE(late.value.m_hasValue);
    c.removeListener(&editor);
    links.clear();
    EXPECT_TRUE(a.m_listeners.empty() && b.m_listeners.empty() && c.m_listeners.empty());
}

TEST(PropertyLink, ListensFromConstructionToDestruction)
{
    Plain a, b;
    {
        PropertyLink link(&a.value, &b.value);
        EXPECT_FALSE(b.value.m_hasValue) << "construction copies nothing";
        link.onPropertyChanged(&a.value); // by hand: as often as one likes
        a.addProperty(&a.value);
        a.changePropertyId(a.value.m_id, generateUniqueId());
    }
    a.value = 1.0f;
    EXPECT_FALSE(b.value.m_value == 1.0f);
    EXPECT_TRUE(a.m_listeners.empty()) << "though it stood under the former id";

    IntProperty number(&a, KindInt, "Number"), choice(&b, KindEnum, "Choice");
    PropertyLink toChoice(&number, &choice);
    number = 5;
    EXPECT_EQ(choice.m_value, 5);
    EXPECT_EQ(choice.m_type, KindEnum);
}

} // namespace helvantine
