// SPDX-License-Identifier: MIT
#include <helvantine/core/RotationKeyframe.h>
#include <helvantine/object/Property.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <deque>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace helvantine
{

namespace
{

constexpr float s_nan = std::numeric_limits<float>::quiet_NaN();

/// Counts what it hears, and does something once.
struct Listener final : PropertyListener
{
    void onPropertyChanged(PropertyBase*) override
    {
        ++count;
        if (const auto once = std::exchange(action, nullptr))
            once();
    }

    int count = 0;
    std::function<void()> action;
};

/// A context with one property of each storage.
struct Owner : PropertyContext
{
    Owner()
    {
        for (PropertyBase* property : std::initializer_list<PropertyBase*>{
                 &number, &integer, &choice, &vec2, &vec3, &vec4, &rotation, &color, &flag})
            addProperty(property);
    }

    /// Listens to a property from now on.
    void watch(PropertyBase& property, Listener& listener) { addListener(property.m_id, &listener); }

    FloatProperty number{this, KindFloat, "Number"};
    IntProperty integer{this, KindInt, "Integer"};
    IntProperty choice{this, KindEnum, "Choice"};
    Vec2Property vec2{this, KindVec2, "Vec2"};
    Vec3Property vec3{this, KindVec3, "Rotation"};
    Vec4Property vec4{this, KindVec4, "Vec4"};
    Vec4Property rotation{this, KindRotation, "Turn"};
    Vec4Property color{this, KindColor, "Color"};
    BoolProperty flag{this, KindBool, "Flag"};
    StringProperty text{this, KindString, "Text", "first"};
};

/// A curve with two keys; the caller owns it.
Keyframe* makeLine(float startValue, float endTime, float endValue)
{
    auto* curve = new Keyframe(1);
    for (const auto& [time, value] : {std::pair(0.0f, startValue), std::pair(endTime, endValue)}) {
        Key* key = curve->createKey();
        key->time = time;
        key->mode = 1;
        key->values[0] = value;
        curve->addKey(key, true);
    }
    return curve;
}

/// The value of a property whose components are floats.
const float* getComponents(const PropertyBase& property)
{
    switch (property.m_type) {
    case KindFloat:
        return &static_cast<const FloatProperty&>(property).m_value;
    case KindVec2:
        return &static_cast<const Vec2Property&>(property).m_value.x;
    case KindVec3:
        return &static_cast<const Vec3Property&>(property).m_value.x;
    default:
        return &static_cast<const Vec4Property&>(property).m_value.x;
    }
}

} // namespace

TEST(Property, AssignmentTellsOnlyWhatIsNew)
{
    Owner owner;
    Listener numbers, texts;
    owner.watch(owner.number, numbers);
    owner.watch(owner.text, texts);

    owner.number = 0.0f; // never assigned before: told, though the value is the same
    owner.number = -0.0f;
    EXPECT_EQ(numbers.count, 1);
    owner.number = 2.5f;
    owner.number = 2.5f;
    EXPECT_EQ(numbers.count, 2);
    owner.number = s_nan;
    owner.number = s_nan;
    EXPECT_EQ(numbers.count, 4);

    owner.text = "first"; // the default counts as a value
    EXPECT_EQ(texts.count, 0);
    owner.text = "second";
    EXPECT_EQ(texts.count, 1);
    EXPECT_FALSE(owner.vec3.m_hasValue);
    EXPECT_TRUE(owner.vec3.setDefault({1, 2, 3}));
    EXPECT_TRUE(owner.vec3.m_hasValue);
}

TEST(Property, TextFormsCarryValuesThereAndBack)
{
    Owner owner;
    struct Case
    {
        PropertyBase& property;
        const char* in;
        const char* out;
    };
    const Case cases[] = {
        {owner.number, "  -2.5x", "-2.500000"},
        {owner.number, "nothing", "0.000000"},
        {owner.number, "1e-9", "0.000000"},
        {owner.integer, "-17", "-17"},
        {owner.integer, "99999999999", "2147483647"},
        {owner.choice, "12", "12"},
        {owner.flag, "5", "1"},
        {owner.flag, "no", "0"},
        {owner.vec2, "1.5,2", "1.500000, 2.000000"},
        {owner.vec3, "1, 2, 3, 4", "1.000000, 2.000000, 3.000000"},
        {owner.vec3, "7, 8", "7.000000, 8.000000, 0.000000"},
        {owner.rotation, "1, , x, 0.1", "1.000000, 0.000000, 0.000000, 0.100000"},
        {owner.text, "a, \"b\"\n", "a, \"b\"\n"},
        {owner.text, nullptr, ""},
        {owner.vec2, nullptr, "0.000000, 0.000000"},
    };
    for (const Case& c : cases) {
        c.property.fromString(c.in);
        EXPECT_EQ(c.property.toString(), c.out) << c.property.m_name << " from " << c.in;
    }
}

TEST(Property, CopyTellsUnlessEqualOrSilentAndKeepsTheKind)
{
    Owner owner;
    Listener listener;
    owner.watch(owner.vec4, listener);
    owner.color = Vec4{1, 2, 3, 4};

    owner.color.copyTo(&owner.vec4, true, false);
    owner.color.copyTo(&owner.vec4, true, false);
    EXPECT_EQ(listener.count, 1);
    EXPECT_EQ(owner.vec4.toString(), owner.color.toString());
    EXPECT_EQ(owner.vec4.m_type, KindVec4);

    owner.color.copyTo(&owner.vec4, true, true);
    EXPECT_EQ(listener.count, 2);
    owner.color = Vec4{};
    owner.color.copyTo(&owner.vec4, false, false);
    EXPECT_EQ(listener.count, 2);
    EXPECT_EQ(owner.vec4.toString(), owner.color.toString());
}

TEST(PropertyContext, KeepsInputGroupsSortedAndOutputGroupsAsTheyCome)
{
    Owner owner;
    SmartRef<PropertyGroup> output(new PropertyGroup(&owner, "Inputs"));
    for (const char* name : {"Resources", "Inputs", "inputs", "Attributes"})
        owner.addInputGroup(new PropertyGroup(&owner, name));
    for (PropertyGroup* group : {new PropertyGroup(&owner, "Second"), output.get()})
        owner.addOutputGroup(group);

    std::string order;
    for (const auto* groups : {&owner.m_inputGroups, &owner.m_outputGroups}) {
        for (const SmartRef<PropertyGroup>& group : *groups)
            order += group->m_name + ' ';
    }
    EXPECT_EQ(order, "Attributes Inputs Resources inputs Second Inputs ");
    EXPECT_EQ(owner.findGroup("Inputs"), owner.m_inputGroups[1].get());
    EXPECT_EQ(owner.findGroup(output->m_id), output.get());
    owner.removeOutputGroup(output.get());
    owner.removeOutputGroup(output.get());
    EXPECT_EQ(owner.m_outputGroups.size(), 1u);
}

TEST(PropertyContext, ChangedIdLeavesListenersBehind)
{
    Owner owner;
    Listener listener;
    owner.watch(owner.number, listener);
    const UniqueId oldId = owner.number.m_id, newId = generateUniqueId();

    owner.changePropertyId(oldId, newId);
    owner.changePropertyId(oldId, generateUniqueId()); // unknown by now
    owner.number = 3.0f;

    EXPECT_EQ(owner.findProperty(oldId), nullptr);
    EXPECT_EQ(owner.findProperty(newId), &owner.number);
    EXPECT_EQ(listener.count, 0);
}

TEST(PropertyContext, ListenersMayTakeCurvesAwayDuringTheWalk)
{
    Owner owner;
    Listener listener;
    PropertyBase* const animated[] = {&owner.vec2, &owner.vec3, &owner.vec4};
    for (PropertyBase* property : animated) {
        property->enableKeyframe(true);
        property->m_keyframe->addKey(property->m_keyframe->createKey(), true);
        owner.watch(*property, listener);
    }
    listener.action = [&] {
        for (PropertyBase* property : animated)
            property->enableKeyframe(false);
    };

    owner.updateProperties(0.0f);
    owner.updateProperties(0.0f);

    EXPECT_EQ(listener.count, 1) << "the first that is told ends all curves, whichever it is";
}

TEST(PropertyContext, ListenersMayChangeTheListTheyAreToldFrom)
{
    Owner owner;
    Listener first, neighbour, late;
    owner.watch(owner.number, first);
    owner.watch(owner.number, neighbour);
    owner.watch(owner.integer, neighbour);
    first.action = [&] {
        owner.removeListener(&neighbour);
        for (int i = 0; i < 100; ++i)
            owner.watch(owner.number, late);
        owner.number = 8.0f; // told within the telling
    };

    owner.number = 7.0f;

    EXPECT_EQ(first.count, 2);
    EXPECT_EQ(neighbour.count, 0);
    EXPECT_EQ(late.count, 200);
    EXPECT_FALSE(owner.m_listeners.contains(owner.integer.m_id)) << "an empty list is no entry";
    owner.removeListener(&late);
    owner.removeListener(&first);
    EXPECT_TRUE(owner.m_listeners.empty());
}

TEST(PropertyCurve, ComesWithTheKindThatMayHaveOne)
{
    Owner owner;
    owner.flag.enableKeyframe(true);
    owner.choice.enableKeyframe(true);
    EXPECT_EQ(owner.flag.m_keyframe, nullptr);
    EXPECT_EQ(owner.choice.m_keyframe, nullptr);

    owner.vec3.enableKeyframe(true);
    owner.rotation.enableKeyframe(true);
    EXPECT_EQ(owner.vec3.m_keyframe->getComponentCount(), 3u);
    EXPECT_NE(dynamic_cast<RotationKeyframe*>(owner.rotation.m_keyframe.get()), nullptr);

    const Keyframe* curve = owner.vec3.m_keyframe.get();
    owner.vec3.enableKeyframe(true);
    EXPECT_EQ(owner.vec3.m_keyframe.get(), curve);
    owner.vec3.enableKeyframe(false);
    owner.vec3.enableKeyframe(false);
    EXPECT_EQ(owner.vec3.m_keyframe, nullptr);
}

TEST(PropertyCurve, EditsBetweenTicksCountFromTheNextOneOn)
{
    Owner owner;
    owner.number.setKeyframe(makeLine(0, 1, 2));
    const auto tick = [&](float time) {
        owner.updateProperties(time);
        return owner.number.m_value;
    };
    EXPECT_EQ(tick(0.25f), 0.5f);
    owner.number = 9.0f; // by hand
    EXPECT_EQ(tick(0.25f), 0.5f);
    owner.number.m_keyframe->getKeys()[1]->values[0] = 4.0f;
    EXPECT_EQ(tick(0.5f), 1.0f) << "not sorted yet";
    owner.number.m_keyframe->sort();
    EXPECT_EQ(tick(0.5f), 2.0f);
    EXPECT_EQ(tick(1.5f), 4.0f);
    owner.number.m_keyframe->setPostOOR(KeyframeOOR::Cycle);
    EXPECT_EQ(tick(1.5f), 2.0f);
    owner.changePropertyId(owner.number.m_id, generateUniqueId());
    EXPECT_EQ(tick(1.25f), 1.0f);
    owner.number.setKeyframe(makeLine(7, 1, 7));
    EXPECT_EQ(tick(1.25f), 7.0f);
    owner.removeProperty(&owner.number);
    owner.number = 1.0f;
    EXPECT_EQ(tick(0.5f), 1.0f);
}

TEST(PropertyCurve, EditsByListenersCountWithinTheTick)
{
    Owner owner;
    FloatProperty other(&owner, KindFloat, "Other");
    owner.addProperty(&other);
    FloatProperty* const order[] = {owner.number.m_id < other.m_id ? &owner.number : &other,
                                    owner.number.m_id < other.m_id ? &other : &owner.number};
    for (FloatProperty* property : order)
        property->setKeyframe(makeLine(0, 1, 2));
    owner.updateProperties(0.25f);

    Listener listener;
    owner.watch(*order[0], listener);
    listener.action = [&] {
        order[1]->m_keyframe->getKeys()[1]->values[0] = 4.0f;
        order[1]->m_keyframe->sort();
    };
    owner.updateProperties(0.5f);
    EXPECT_EQ(order[1]->m_value, 2.0f);

    listener.action = [&] { // a tick within the tick, with a new list
        owner.removeProperty(order[1]);
        owner.updateProperties(0.125f);
    };
    owner.updateProperties(0.75f);
    EXPECT_EQ(order[0]->m_value, 0.25f);
    EXPECT_EQ(order[1]->m_value, 2.0f) << "has left";
}

TEST(PropertyCurve, UpdateAssignsWhatCurvesYield)
{
    Owner owner;
    Listener numbers, integers, vectors;
    owner.watch(owner.number, numbers);
    owner.watch(owner.integer, integers);
    owner.watch(owner.vec2, vectors);
    owner.number.setKeyframe(makeLine(0, 1, 2));
    owner.integer.setKeyframe(makeLine(-2.9f, 1, -2.0f));
    owner.vec2.enableKeyframe(true);           // without keys: yields nothing
    owner.vec3.setKeyframe(makeLine(1, 1, 1)); // too few components to read
    owner.flag.setKeyframe(makeLine(1, 1, 1)); // a kind without curves

    for (const float time : {0.0f, 0.5f, 0.5f, 0.9f})
        owner.updateProperties(time);

    EXPECT_FLOAT_EQ(owner.number.m_value, 1.8f);
    EXPECT_EQ(numbers.count, 3);
    EXPECT_EQ(owner.integer.m_value, -2) << "truncated toward zero";
    EXPECT_EQ(integers.count, 1) << "moves within one integer";
    EXPECT_EQ(vectors.count, 0);
    EXPECT_FALSE(owner.vec2.m_hasValue || owner.vec3.m_hasValue || owner.flag.m_hasValue);

    owner.number.enableKeyframe(false);
    owner.integer.setKeyframe(makeLine(1e20f, 1, 1e20f));
    owner.updateProperties(0.0f);
    EXPECT_FLOAT_EQ(owner.number.m_value, 1.8f);
    EXPECT_EQ(owner.integer.m_value, std::numeric_limits<std::int32_t>::min());
}

/// Ticks evaluate what was remembered of the curves: it must never show.
TEST(PropertyCurve, UpdateFollowsTheCurvesToTheBitWhateverHappensBetween)
{
    std::mt19937 random(7);
    const auto number = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    Owner owner;
    std::vector<PropertyBase*> properties = {&owner.number, &owner.vec2,  &owner.vec3,
                                             &owner.vec4,   &owner.color, &owner.rotation};
    std::deque<FloatProperty> floats;
    for (int i = 0; i < 9; ++i)
        properties.push_back(&floats.emplace_back(&owner, KindFloat, "Float"));
    for (PropertyBase* property : properties) {
        owner.addProperty(property);
        property->enableKeyframe(true);
        Keyframe& curve = *property->m_keyframe;
        for (int i = 0; i < 12; ++i) {
            Key* key = curve.createKey();
            key->time = static_cast<float>(random() % 40) / 4; // some at the same time
            key->mode = random() % 4;
            std::generate(std::begin(key->values), std::end(key->values), [&] { return number(-1, 1); });
            key->vectorA = Vec4(number(-3, 3), number(-3, 3), number(-3, 3), number(-3, 3));
            key->vectorB = Vec4(number(-3, 3), number(-3, 3), number(-3, 3), number(-3, 3));
            key->paramD = random() % 3 ? 0.0f : 0.4f;
            curve.addKey(key, false);
        }
        curve.sort();
    }

    float anchor = 0;
    for (int step = 0; step < 6000; ++step) {
        Keyframe& edited = *properties[random() % properties.size()]->m_keyframe;
        if (random() % 64 == 0) {
            edited.getKeys()[random() % 12]->values[0] = number(-5, 5);
            edited.sort();
        }
        if (random() % 16 == 0)
            owner.number = 99.0f; // somebody else's value lasts until the next update
        // Plays, jumps, and goes to and fro about a key or its place in another turn.
        if (step % 16 == 0) {
            edited.setPreOOR(static_cast<KeyframeOOR>(random() % 5));
            edited.setPostOOR(static_cast<KeyframeOOR>(random() % 5));
            const auto& keys = edited.getKeys();
            const float length = keys.back()->time - keys.front()->time;
            const std::size_t key = random() % 2 ? random() % 12 : 11;
            anchor = keys[key]->time + static_cast<float>(random() % 3) * length - length;
        }
        const float times[] = {static_cast<float>(step) / 60.0f - 20.0f, number(-30, 30), anchor,
                               anchor + number(-0.1f, 0.1f)};
        const float time = times[step / 16 % 3 == 0 ? 0 : random() % 4];
        owner.updateProperties(time);
        for (const PropertyBase* property : properties) {
            const std::unique_ptr<Keyframe> fresh(property->m_keyframe->clone());
            fresh->sort();
            ASSERT_EQ(std::memcmp(getComponents(*property), fresh->evaluate(time),
                                  property->getComponentCount() * sizeof(float)),
                      0)
                << "kind " << property->m_type << " at " << time << ", step " << step;
        }
    }
}

TEST(PropertyCurve, TicksWithinATickLeaveItsTimeAlone)
{
    Owner owner;
    std::deque<FloatProperty> floats;
    Listener listener;
    for (int i = 0; i < 6; ++i) {
        FloatProperty& property = floats.emplace_back(&owner, KindFloat, "Float");
        owner.addProperty(&property);
        property.setKeyframe(makeLine(0, 1, 2));
        owner.watch(property, listener);
    }
    listener.action = [&] { owner.updateProperties(3.0f); }; // from whichever comes first, in other segments

    owner.updateProperties(0.5f);

    EXPECT_EQ(
        std::count_if(floats.begin(), floats.end(), [](auto& property) { return property.m_value == 1; }), 5);
    EXPECT_EQ(
        std::count_if(floats.begin(), floats.end(), [](auto& property) { return property.m_value == 2; }), 1)
        << "the inner tick came behind its own assignment";
    owner.updateProperties(0.5f);
    for (const FloatProperty& property : floats)
        EXPECT_EQ(property.m_value, 1.0f);
}

} // namespace helvantine
