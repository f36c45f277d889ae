// SPDX-License-Identifier: MIT
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/testsupport/ProjectTest.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace helvantine
{

using testing::HasSubstr;

namespace
{

constexpr const char* goodText = "float4 VS_Main(float4 p : POSITION) : SV_Position { return p; }\n"
                                 "float4 PS_Main() : SV_Target { return 1; }\n"
                                 "float4 PS_Other() : SV_Target { return 0; }\n";
constexpr const char* brokenText = "float4 VS_Main(float4 p : POSITION) : SV_Position\n{ return q; }\n";

struct ShaderNodeOnDevice : test::DrawingTest
{
    static std::string tick(SchematicsNode& node)
    {
        FxUpdateContext context;
        node.update(context);
        return node.m_outputGroups.at(0)->m_properties.at(0)->toString();
    }
    static PropertyBase& attribute(const SchematicsNode& node, const char* name)
    {
        return *node.findGroup("Attributes")->findProperty(name);
    }
};

} // namespace

TEST_F(ShaderNodeOnDevice, EachEditCompilesAtOnce)
{
    const SmartRef<ShaderNode> node(new ShaderNode);
    const auto* resource = findResourceOfType<ShaderResource>(tick(*node));
    ASSERT_NE(resource, nullptr);
    node->setText(goodText);
    EXPECT_EQ(node->getTextLog(), "");
    const Shader* first = resource->getShader();
    EXPECT_NE(first, nullptr);

    attribute(*node, "PS EntryPoint").fromString("PS_Other");
    EXPECT_EQ(node->getTextLog(), "");
    EXPECT_NE(resource->getShader(), nullptr);
    attribute(*node, "VS EntryPoint").fromString("VS_Missing");
    EXPECT_NE(node->getTextLog(), "");
    EXPECT_EQ(resource->getShader(), nullptr);
    attribute(*node, "VS EntryPoint").fromString("VS_Main");
    EXPECT_NE(resource->getShader(), nullptr);

    node->setText(brokenText);
    EXPECT_THAT(node->getTextLog(), HasSubstr(":2: error:"));
    EXPECT_EQ(resource->getShader(), nullptr);
}

TEST_F(ShaderNodeOnDevice, ATextThatNestsWithoutMeasureEndsInTheLog)
{
    const SmartRef<ShaderNode> node(new ShaderNode);
    const auto* resource = findResourceOfType<ShaderResource>(tick(*node));
    std::string brackets = "#define A0 (\n"; // too many for any stack, once the macros bring them together
    for (char n = '1'; n <= '8'; ++n) {
        const std::string before = std::string(" A") + char(n - 1);
        brackets += std::string("#define A") + n + before + before + before + before + before + "\n";
    }
    node->setText((brackets + "float4 VS_Main() : SV_Position { return A8 1; }\n").c_str());
    EXPECT_THAT(node->getTextLog(), HasSubstr("shader:10: error: expressions nest deeper than "));
    EXPECT_EQ(resource->getShader(), nullptr);

    node->setText(goodText);
    EXPECT_EQ(node->getTextLog(), "");
    EXPECT_NE(resource->getShader(), nullptr);
}

TEST_F(ShaderNodeOnDevice, AMaterialFollowsTheShadersOfItsPasses)
{
    const SmartRef<ShaderNode> shader(new ShaderNode);
    const SmartRef<MaterialShaderNode> material(new MaterialShaderNode);
    shader->setText(goodText);
    const std::string shaderId = tick(*shader);
    attribute(*material, "Default Pass").fromString(shaderId.c_str());
    attribute(*material, "Shadow Pass").fromString("no id");
    attribute(*material, "DepthNormal Pass").fromString(tick(*material).c_str()); // no shader's
    const auto* passes = findResourceOfType<MaterialShaderResource>(tick(*material));
    ASSERT_NE(passes, nullptr);
    EXPECT_EQ(passes->getShader0(), findResourceOfType<ShaderResource>(shaderId)->getShader());
    EXPECT_NE(passes->getShader0(), nullptr);
    EXPECT_EQ(passes->getShader1(), nullptr);
    EXPECT_EQ(passes->getShader2(), nullptr);

    shader->setText(brokenText);
    EXPECT_NE(passes->getShader0(), nullptr) << "held until the next frame";
    tick(*material);
    EXPECT_EQ(passes->getShader0(), nullptr);
}

} // namespace helvantine
