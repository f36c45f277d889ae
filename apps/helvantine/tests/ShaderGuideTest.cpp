// SPDX-License-Identifier: MIT
// docs/shader-authoring.md, held against what it tells of.
#include "ResourceUse.h"

#include <helvantine/core/Text.h>
#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/testsupport/ImageComparison.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

namespace helvantine::test
{

namespace
{

/// The page's blocks of HLSL that are whole programs.
std::vector<std::string> readPrograms()
{
    constexpr std::string_view begin = "\n```hlsl\n", end = "\n```\n";
    const std::string page = readFile(DOCS_FOLDER "/shader-authoring.md");
    std::vector<std::string> programs;
    for (std::size_t at = 0; (at = page.find(begin, at)) != std::string::npos;) {
        at += begin.size();
        const std::string text = page.substr(at, page.find(end, at) - at);
        if (text.find("PS_Main(") != std::string::npos)
            programs.push_back(text);
    }
    return programs;
}

std::string stagesOf(const ProgramBindings::Register& bound)
{
    if (bound.letter != 'b' || bound.stages == ProgramBindings::Both)
        return "both";
    return bound.stages == ProgramBindings::Vertex ? "vertex" : "pixel";
}

/// What stands between the page's marks.
std::string makeBindingTables()
{
    std::string text;
    for (const tool::ResourceUse& use : tool::getResourceUses()) {
        if (!use.bindings)
            continue;
        text += formatString("`%s`, for the shader that \"%s\" names:\n\n"
                             "| Register or input | Stages | Holds |\n|---|---|---|\n",
                             use.owner, use.property);
        for (const ProgramBindings::Register& bound : use.bindings->registers)
            text += formatString("| `%c%d` | %s | %s |\n", bound.letter, bound.number,
                                 stagesOf(bound).c_str(), bound.holds);
        for (const ProgramBindings::Input& input : use.bindings->inputs)
            text += formatString("| `%s%u` | vertex | %s |\n", input.semantic, input.index, input.holds);
    }
    return text;
}

class ShaderGuide : public DrawingTest
{
protected:
    ShaderGuide() : DrawingTest(32, 18) {}
};

} // namespace

TEST_F(ShaderGuide, TellsWhatEachEffectBinds)
{
    const std::string tables = makeBindingTables();
    EXPECT_NE(
        readFile(DOCS_FOLDER "/shader-authoring.md").find("<!-- bindings -->\n" + tables + "<!-- end -->"),
        std::string::npos)
        << "the tables are now\n"
        << tables;
}

TEST_F(ShaderGuide, ItsProgramsCompileAndTheSkeletonDraws)
{
    const std::vector<std::string> programs = readPrograms();
    ASSERT_FALSE(programs.empty());
    for (const std::string& program : programs)
        EXPECT_EQ(ShaderResource::check(program.c_str(), "VS_Main", "PS_Main"), "") << program;

    const SmartRef<ShaderResource> shader(new ShaderResource);
    ASSERT_EQ(shader->create(programs[0].c_str(), "VS_Main", "PS_Main"), "");
    const SmartRef<TextureResource> picture(new TextureResource);
    ASSERT_TRUE(writePng(folder().file("white.png"), Image(2, 2, Vec4(1, 1, 1, 1))));
    ASSERT_TRUE(picture->load(folder().file("white.png").c_str()));
    getResourceManager()->getRoot()->addResource(shader.get());
    getResourceManager()->getRoot()->addResource(picture.get());
    const SmartRef<RayMarchingEffect> effect(new RayMarchingEffect);
    effect->onInit();
    effect->setEnd(100);
    composition().m_rootEffect->addObject(effect.get(), -1);
    const auto set = [&](const char* group, const char* name, const std::string& text) {
        effect->findGroup(group)->findProperty(name)->fromString(text.c_str());
    };
    set("Transformation", "Size", "4096, 4096");
    set("Raymarching", "Shader", uniqueIdToString(shader->getId()));
    set("Attributes", "Texture", uniqueIdToString(picture->getId()));
    set("Attributes", "Color", "1, 0, 0, 1");
    EXPECT_EQ(render(0).at8(16, 9), (Image::Pixel8{255, 0, 0, 255}));
}

} // namespace helvantine::test
