// SPDX-License-Identifier: MIT
#include "plugin/Runtime.h"

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/NearestNames.h>
#include <helvantine/core/Report.h>
#include <helvantine/resource/TextureResource.h>

#include <gtest/gtest.h>

#include <limits>

namespace helvantine
{

using testplugin::RecordingEffect;
using testplugin::takeWords;

namespace
{

struct NamedProperty : ::testing::Test
{
    NamedProperty() : effect(new RecordingEffect)
    {
        effect->setName("Sun");
        takeProblems();
    }
    ~NamedProperty() override { EXPECT_EQ(takeWords(), "") << "only what the test took is reported"; }

    testplugin::Runtime runtime;
    SmartRef<RecordingEffect> effect;
};

} // namespace

TEST_F(NamedProperty, IsFoundByItsNameAndByThatOfItsGroup)
{
    EXPECT_EQ(effect->findProperty("Color"), &effect->m_color);
    EXPECT_EQ(effect->findProperty("Inputs.Color"), &effect->m_color);
    EXPECT_EQ(effect->findProperty("Outputs.Output"), &effect->m_output);

    StringProperty loose(effect.get(), KindString, "Loose");
    StringProperty dotted(effect.get(), KindString, "Scale 1.5");
    effect->m_inputs->addProperty(&dotted);
    EXPECT_EQ(effect->findProperty("Loose"), &loose) << "in no group";
    EXPECT_EQ(effect->findProperty("Scale 1.5"), &dotted) << "a point that parts nothing";
    EXPECT_EQ(effect->findProperty("Inputs.Scale 1.5"), &dotted);
    effect->m_inputs->removeProperty(&dotted);
}

TEST_F(NamedProperty, ThatIsAbsentIsReportedWithTheNearest)
{
    EXPECT_EQ(effect->findProperty("Colour"), nullptr);
    EXPECT_EQ(takeWords(), "property: RecordingEffect 'Sun' has no property 'Colour'; nearest: 'Color'");
    EXPECT_EQ(effect->findProperty("Input.Color"), nullptr);
    EXPECT_EQ(takeWords(),
              "property: RecordingEffect 'Sun' has no property 'Input.Color'; nearest: 'Inputs.Color'");
    EXPECT_EQ(effect->findProperty("Quaternion"), nullptr);
    EXPECT_EQ(takeWords(), "property: RecordingEffect 'Sun' has no property 'Quaternion'");
    effect->setName("");
    EXPECT_EQ(effect->findProperty(""), nullptr);
    EXPECT_EQ(takeWords(), "property: RecordingEffect has no property ''");
}

TEST_F(NamedProperty, ThatTwoGroupsHaveNeedsItsGroup)
{
    StringProperty other(effect.get(), KindString, "Color");
    effect->m_outputs->addProperty(&other);

    EXPECT_EQ(effect->findProperty("Outputs.Color"), &other);
    EXPECT_EQ(effect->findProperty("Color"), nullptr);
    EXPECT_EQ(takeWords(),
              "property: RecordingEffect 'Sun' has 2 properties 'Color': 'Inputs.Color', 'Outputs.Color'");
    effect->m_inputs->addProperty(&effect->m_color);
    EXPECT_EQ(effect->findProperty("Inputs.Color"), &effect->m_color)
        << "one that stands in its group twice is one";
    effect->m_outputs->removeProperty(&other);
}

TEST_F(NamedProperty, ComesAsTheClassThatItIsAndAsNoOther)
{
    EXPECT_EQ(effect->findPropertyOfType<Vec4Property>("Rotation"), &effect->m_rotation);
    EXPECT_EQ(effect->findPropertyOfType<IntProperty>("Enum"), &effect->m_enum);
    EXPECT_EQ(effect->findPropertyOfType<StringProperty>("Resource"), &effect->m_resource);
    EXPECT_EQ(castTo<BoolProperty>(effect->findProperty("Bool")), &effect->m_bool);
    EXPECT_EQ(castTo<FloatProperty>(effect->findProperty("Vec2")), nullptr);
    EXPECT_EQ(effect->findPropertyOfType<FloatProperty>("Color"), nullptr);
    EXPECT_EQ(takeWords(), "property: RecordingEffect 'Sun': property 'Color' is a colour and not a float");
}

TEST_F(NamedProperty, TakesValuesOfItsKind)
{
    const SmartRef<TextureResource> texture(new TextureResource);
    const std::string id = uniqueIdToString(texture->getId());
    EXPECT_TRUE(effect->setProperty("Float", 1.5));
    EXPECT_TRUE(effect->setProperty("Int", std::numeric_limits<int>::min()));
    EXPECT_TRUE(effect->setProperty("Vec2", {1, 2}));
    EXPECT_TRUE(effect->setProperty("Vec3", Vec3(1, 2, 3)));
    EXPECT_TRUE(effect->setProperty("Color", {0.25f, 0.5f, 0.75f, 1}));
    EXPECT_TRUE(effect->setProperty("Bool", true));
    EXPECT_TRUE(effect->setProperty("String", "12"));
    EXPECT_TRUE(effect->setProperty("Resource", texture.get()));
    EXPECT_TRUE(effect->setProperty("Enum", "On"));

    EXPECT_EQ(effect->m_float.m_value, 1.5f);
    EXPECT_EQ(effect->m_int.m_value, std::numeric_limits<int>::min());
    EXPECT_EQ(effect->m_vec2.m_value, Vec2(1, 2));
    EXPECT_EQ(effect->m_vec3.m_value, Vec3(1, 2, 3));
    EXPECT_EQ(effect->m_color.m_value, Vec4(0.25f, 0.5f, 0.75f, 1));
    EXPECT_TRUE(effect->m_bool.m_value);
    EXPECT_EQ(effect->m_string.m_value, "12");
    EXPECT_EQ(effect->m_resource.m_value, id);
    EXPECT_EQ(effect->m_enum.m_value, 1);

    EXPECT_TRUE(effect->setProperty("Enum", 0));
    EXPECT_EQ(effect->m_enum.m_value, 0);
    EXPECT_TRUE(effect->setProperty("Resource", static_cast<const Resource*>(nullptr)));
    EXPECT_EQ(effect->m_resource.m_value, "");
    EXPECT_TRUE(effect->setProperty("Resource", id));
    EXPECT_EQ(effect->m_resource.m_value, id);
}

TEST_F(NamedProperty, RefusesWhatItsKindCannotTake)
{
    const SmartRef<TextureResource> texture(new TextureResource);
    const struct
    {
        const char* property;
        PropertyValue value;
        const char* words;
    } cases[] = {
        {"Float", "1.5", "takes a number, not the text '1.5'"},
        {"Float", {1, 2}, "takes a number, not 2 numbers"},
        {"Float", true, "takes a number, not true"},
        {"Int", 1.5, "takes a whole number, not 1.5"},
        {"Int", 3e9, "takes a whole number, not 3e+09"},
        {"Int", std::numeric_limits<double>::quiet_NaN(), "takes a whole number, not nan"},
        {"Vec3", {1, 2}, "takes 3 numbers, not 2 numbers"},
        {"Rotation", 1, "takes 4 numbers, not 1"},
        {"Bool", 1, "takes true or false, not 1"},
        {"String", 1, "takes a text, not 1"},
        {"String", texture.get(), "takes a text, not a resource"},
        {"Resource", "sun.png", "takes a resource or the text of its id, not the text 'sun.png'"},
        {"Enum", "on", "has no label 'on', but 0 'Off', 1 'On'"},
        {"Enum", 2, "has no label 2, but 0 'Off', 1 'On'"},
    };
    for (const auto& [property, value, words] : cases) {
        const std::string before = effect->findProperty(property)->toString();
        EXPECT_FALSE(effect->setProperty(property, value)) << words;
        EXPECT_EQ(takeWords(),
                  "property: RecordingEffect 'Sun': property '" + std::string(property) + "' " + words);
        EXPECT_EQ(effect->findProperty(property)->toString(), before) << words;
    }
    EXPECT_FALSE(effect->setProperty("Absent", 1));
    EXPECT_EQ(takeWords(), "property: RecordingEffect 'Sun' has no property 'Absent'");
}

TEST_F(NamedProperty, GetsACurveInPlaceOfTheOneItHas)
{
    ASSERT_TRUE(effect->animateProperty("Float", KeyModeLinear, {{2, 20}, {1, 10}}, KeyframeOOR::Linear));
    ASSERT_TRUE(effect->animateProperty("Float", KeyModeLinear, {{4, 40}, {3, 30}}, KeyframeOOR::Linear));
    ASSERT_TRUE(effect->animateProperty("Color", KeyModeHold, {{0, {1, 2, 3, 4}}}));

    effect->updateProperties(3.5f);
    EXPECT_EQ(effect->m_float.m_value, 35.0f);
    EXPECT_EQ(effect->m_float.m_keyframe->getKeys().size(), 2u);
    EXPECT_EQ(effect->m_color.m_value, Vec4(1, 2, 3, 4));
    effect->updateProperties(5.0f);
    EXPECT_EQ(effect->m_float.m_value, 50.0f);
}

TEST_F(NamedProperty, KeepsItsCurveWhenOneOfTheKeysDoesNotFit)
{
    ASSERT_TRUE(effect->animateProperty("Vec2", KeyModeLinear, {{0, {1, 2}}}));
    const Keyframe* curve = effect->m_vec2.m_keyframe.get();

    EXPECT_FALSE(effect->animateProperty("Vec2", KeyModeLinear, {{0, {1, 2}}, {1, {1, 2, 3}}}));
    EXPECT_EQ(takeWords(), "property: RecordingEffect 'Sun': property 'Vec2' takes 2 numbers, not 3 numbers");
    EXPECT_FALSE(
        effect->animateProperty("Vec2", KeyModeLinear, {{std::numeric_limits<float>::infinity(), {1, 2}}}));
    EXPECT_EQ(takeWords(),
              "property: RecordingEffect 'Sun': property 'Vec2' has a key whose time is no finite number");
    EXPECT_EQ(effect->m_vec2.m_keyframe.get(), curve);
    EXPECT_FALSE(effect->animateProperty("Bool", KeyModeHold, {{0, true}}));
    EXPECT_EQ(takeWords(),
              "property: RecordingEffect 'Sun': property 'Bool' is a boolean, which has no curve");
}

TEST(NearestNames, AreThoseThatSomebodyMayHaveMeant)
{
    const std::vector<std::string> names = {"render", "play", "info", "check", "Render Target", "render"};
    using Names = std::vector<std::string>;
    EXPECT_EQ(findNearestNames("rendre", names), Names{"render"}) << "swapped letters";
    EXPECT_EQ(findNearestNames("CHECK", names), Names{"check"}) << "another case";
    EXPECT_EQ(findNearestNames("ply", names), Names{"play"}) << "a letter too few";
    EXPECT_EQ(findNearestNames("target", names), Names{"Render Target"}) << "a part";
    EXPECT_EQ(findNearestNames("convert", names), Names{});
    EXPECT_EQ(findNearestNames("", names), Names{});
    EXPECT_EQ(findNearestNames(std::string(100000, 'a'), names), Names{});
    EXPECT_EQ(describeNearestNames("rend", names), "; nearest: 'render', 'Render Target'");
}

} // namespace helvantine
