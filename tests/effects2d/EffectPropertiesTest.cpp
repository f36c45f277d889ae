// SPDX-License-Identifier: MIT
#include <helvantine/core/Text.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TestEffect.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Effect2D.h>

#include <set>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

/// Documents hold properties by group and name, and in the order of the group.
struct Expectation
{
    const char* effect;
    const char* base; ///< whose properties come before, in each group; null for none
    const char* properties;
};

constexpr const char* s_target = "Attributes/Render Target: 9 = \n";
constexpr Expectation s_expectations[] = {
    {"Texture", nullptr,
     "Attributes/Color: 6 = 1.000000, 1.000000, 1.000000, 1.000000\n"
     "Attributes/Blend: 10 = 0 Solid|Additive|Alpha|Multiply|Premultiplied\n"
     "Attributes/Texture: 9 = \n"
     "Transformation/Position: 3 = 0.000000, 0.000000, 0.000000\n"
     "Transformation/Size: 2 = 256.000000, 256.000000\n"
     "Transformation/Rotation: 3 = 0.000000, 0.000000, 0.000000\n"
     "Transformation/Pivot: 3 = 0.500000, 0.500000, 0.500000\n"
     "Transformation/3D: 7 = 0\n"
     "UV/Wrap: 10 = 0 Clamp|Wrap|Mirror\n"
     "UV/UV-Rect: 4 = 0.000000, 0.000000, 1.000000, 1.000000\n"},
    {"Texture Blend", "Texture",
     "Attributes/Texture-2: 9 = \n"
     "Blend/Blend Type: 10 = 0 Mix|Darken|Lighten|Add|Subtract|Screen|Overlay|Color Dodge|Color "
     "Burn|Multiply\n"
     "Blend/Threshold: 0 = 0.500000\n"
     "UV/UV-Rect-2: 4 = 0.000000, 0.000000, 1.000000, 1.000000\n"},
    {"Color Correction", "Texture",
     "Color Correction/Brightness: 0 = 1.000000\n"
     "Color Correction/Contrast: 0 = 1.000000\n"
     "Color Correction/Saturation: 0 = 1.000000\n"
     "Color Correction/Hue: 0 = 0.000000\n"},
    {"Texture Dither", "Texture",
     "Dither/Grayscale: 7 = 0\n"
     "Dither/Dither Scale: 2 = 64.000000, 64.000000\n"},
    {"Texture Displacement", "Texture",
     "Attributes/Displacement Texture: 9 = \n"
     "UV/Displacement UV-Rect: 4 = 0.000000, 0.000000, 1.000000, 1.000000\n"
     "UV/U Power: 0 = 1.000000\n"
     "UV/V Power: 0 = 1.000000\n"},
    {"Texture RgbDisplacement", "Texture",
     "Attributes/RgbDisplacement Texture: 9 = \n"
     "UV/RgbDisplacement UV-Rect: 4 = 0.000000, 0.000000, 1.000000, 1.000000\n"
     "UV/U Power R: 0 = 1.000000\n"
     "UV/V Power R: 0 = 1.000000\n"
     "UV/U Power G: 0 = 1.000000\n"
     "UV/V Power G: 0 = 1.000000\n"
     "UV/U Power B: 0 = 1.000000\n"
     "UV/V Power B: 0 = 1.000000\n"},
    {"Texture Blur", "Texture",
     "Blur/Blur Count: 1 = 1\n"
     "Blur/Vertical Blur Target: 9 = \n"
     "Blur/Horizontal Blur Target: 9 = \n"},
    {"Texture Glow", "Texture",
     "Glow/Glow Target: 9 = \n"
     "Glow/Threshold: 0 = 0.500000\n"
     "Glow/Bloom Intensity: 0 = 1.000000\n"
     "Glow/Source Intensity: 0 = 1.000000\n"
     "Glow/Bloom Saturation: 0 = 1.000000\n"
     "Glow/Source Saturation: 0 = 1.000000\n"
     "Glow/Blur Count: 1 = 1\n"
     "Glow/Vertical Blur Target: 9 = \n"
     "Glow/Horizontal Blur Target: 9 = \n"},
    {"Texture DOF", "Texture",
     "DOF/Type: 10 = 0 Downsample Blur|Disc Blur\n"
     "DOF/Depth Source: 9 = \n"
     "DOF/Blur Source: 9 = \n"
     "DOF/Focal Width: 0 = 20.000000\n"
     "DOF/Focal Distance: 0 = 10.000000\n"
     "DOF/COC: 0 = 10.000000\n"},
    {"SSAO", "Texture",
     "SSAO/Occlusion Radius: 0 = 0.500000\n"
     "SSAO/Occlusion Fade Start: 0 = 0.200000\n"
     "SSAO/Occlusion Fade End: 0 = 2.000000\n"
     "SSAO/Occlusion Epsilon: 0 = 0.050000\n"
     "SSAO/SSAO HBlur Target: 9 = \n"
     "SSAO/SSAO VBlur Target: 9 = \n"
     "SSAO/Blur Count: 1 = 1\n"},
    {"Texture Lensflare", "Texture", "Lensflare\n"},
    {"Raymarching", "Texture", "Raymarching/Shader: 9 = \n"},
    {"Clear Screen", nullptr,
     "Attributes/Color: 6 = 0.000000, 0.000000, 0.000000, 1.000000\n"
     "Attributes/Depth: 0 = 1.000000\n"
     "Attributes/Stencil: 1 = 0\n"
     "Attributes/Clear Color Target: 7 = 1\n"
     "Attributes/Clear Depth Target: 7 = 1\n"},
    {"Render Target", nullptr, s_target},
    {"Copy Backbuffer", nullptr, s_target},
    {"Test Effect", nullptr,
     "Attributes/Name: 8 = \n"
     "Attributes/Visible: 7 = 1\n"
     "Attributes/Position: 3 = 0.000000, 0.000000, 0.000000\n"
     "Attributes/Rotation: 5 = 0.000000, 0.000000, 0.000000, 0.000000\n"
     "Attributes/Scale: 3 = 1.000000, 1.000000, 1.000000\n"
     "Attributes/Color: 6 = 1.000000, 1.000000, 1.000000, 1.000000\n"
     "Attributes/Blend Mode: 10 = 0 Solid|Alpha|Additive\n"},
};

class EffectProperties : public ProjectTest
{
protected:
    /// Made by its name, as hosts show it; two of them no host can make.
    SmartRef<Effect> make(const std::string& name)
    {
        if (name == CopyBackbufferEffect::s_plugininfo.name)
            return SmartRef<Effect>(new CopyBackbufferEffect);
        if (name == TestEffect::s_plugininfo.name)
            return SmartRef<Effect>(new TestEffect);
        for (const SmartRef<PluginFactory>& factory : application().getPluginManager()->m_factories)
            for (const PluginInfo* info : factory->m_plugins)
                if (info->kind == PluginEffect && info->name == name)
                    return SmartRef<Effect>(createPluginOfType<Effect>(info->id));
        ADD_FAILURE() << "no effect " << name;
        return {};
    }

    static std::string describe(const PropertyBase& property)
    {
        std::string line =
            formatString("%s: %u = ", property.m_name.c_str(), property.m_type) + property.toString();
        const char* separator = " ";
        for (const auto& [value, label] : property.m_enumLabels) {
            line += separator + label;
            separator = "|";
        }
        return line;
    }

    /// A line for each property, in the order of groups and properties; for an empty group its name.
    static std::vector<std::string> list(const Effect& effect)
    {
        std::vector<std::string> lines;
        for (const SmartRef<PropertyGroup>& group : effect.m_inputGroups) {
            if (group->m_properties.empty())
                lines.push_back(group->m_name);
            for (const PropertyBase* property : group->m_properties)
                lines.push_back(group->m_name + "/" + describe(*property));
        }
        return lines;
    }
};

TEST_F(EffectProperties, StandAsDocumentsHoldThem)
{
    for (const Expectation& expected : s_expectations) {
        SCOPED_TRACE(expected.effect);
        const SmartRef<Effect> effect = make(expected.effect);
        ASSERT_TRUE(effect);
        std::set<std::string> inherited;
        if (expected.base)
            for (const std::string& line : list(*make(expected.base)))
                inherited.insert(line);
        std::string own;
        std::string lastGroup;
        for (const std::string& line : list(*effect)) {
            const std::string group = line.substr(0, line.find('/'));
            if (inherited.erase(line) > 0) {
                EXPECT_NE(group, lastGroup) << line << " stands behind the effect's own";
                continue;
            }
            own += line + "\n";
            lastGroup = group;
        }
        EXPECT_EQ(own, expected.properties);
        EXPECT_TRUE(inherited.empty());
        EXPECT_TRUE(effect->m_outputGroups.empty());
    }
}

} // namespace
