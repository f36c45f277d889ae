// SPDX-License-Identifier: MIT
#include <helvantine/core/Report.h>
#include <helvantine/host/CompositionBuilder.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/testsupport/ProjectTest.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace helvantine::test
{

namespace
{

/// Without a device: a document is made where nothing can be drawn.
struct CompositionBuilderTest : ProjectTest
{
    CompositionBuilderTest() { takeProblems(); }

    std::string takeTexts()
    {
        std::string texts;
        for (const Problem& problem : takeProblems())
            texts += problem.module + ": " + problem.text + '\n';
        return texts;
    }
};

} // namespace

TEST_F(CompositionBuilderTest, FillsAnotherCompositionThatASaveKeeps)
{
    ASSERT_TRUE(writePng(folder().file("sun.png"), Image(3, 2)));
    {
        CompositionBuilder builder(document(), "Built", 90);
        Layer& layer = builder.addLayer(builder.getRoot(), "Layer", 10, 50);
        Effect& sun =
            builder.addQuad(layer, "Sun", builder.addTexture("sun.png"), BlendMode::Additive, {1, 2, 30, 40});
        EXPECT_EQ(builder.addTexture("sun.png"), builder.addTexture("sun.png"));
        builder.addTargetEffect(builder.getRoot(), "Target", builder.addRenderTarget("Scene", 64, 32));
        auto& number = builder.addNode<FloatNode>("Number");
        SchematicsNode* spread = builder.addNode("Type/Vec4 Builder", "Spread");
        ASSERT_TRUE(spread);
        for (PropertyBase* input : spread->m_inputGroups[0]->m_properties)
            EXPECT_TRUE(builder.addLink(*number.m_outputGroups[0]->m_properties[0], *input));
        EXPECT_TRUE(builder.addLink(*spread->m_outputGroups[0]->m_properties[0], sun, "Color"));
    }
    EXPECT_EQ(takeTexts(), "");
    const std::string path = folder().file("built.hfx");
    application().saveDocument(path.c_str());
    application().loadDocument(path.c_str(), nullptr, nullptr);

    const auto& compositions = document().getCompositionManager()->getRoot()->m_compositions;
    const auto built = std::find_if(compositions.begin(), compositions.end(),
                                    [](const auto& composition) { return composition->m_name == "Built"; });
    ASSERT_NE(built, compositions.end());
    const Layer& root = *(*built)->m_rootEffect;
    ASSERT_EQ(root.m_children.size(), 2u);
    EXPECT_EQ(root.m_children[0]->getLength(), 40);
    EXPECT_EQ(root.m_children[1]->getLength(), 90);
    Object& sun = *root.m_children[0]->m_children.at(0);
    EXPECT_EQ(sun.findProperty("Position")->toString(), "1.000000, 2.000000, 0.000000");
    EXPECT_EQ(sun.findProperty("Size")->toString(), "30.000000, 40.000000");
    EXPECT_EQ(sun.findPropertyOfType<IntProperty>("Blend")->m_value, static_cast<int>(BlendMode::Additive));
    const auto id = stringToUniqueId(sun.findProperty("Texture")->toString().c_str());
    EXPECT_TRUE(document().getResourceManager()->getRoot()->findResource(id));
    EXPECT_EQ(document().getResourceManager()->getResourcesExcludingFolders().size(), 2u);
    EXPECT_EQ((*built)->m_schematics->m_links.size(), 5u);
    EXPECT_EQ((*built)->m_schematics->m_nodes.size(), 3u) << "the sun's is there, too";
}

TEST_F(CompositionBuilderTest, GoesOnWithoutWhatIsMissingAndSaysSo)
{
    CompositionBuilder builder(document(), composition(), 10);
    const TextureResource* missing = builder.addTexture("absent.png");
    EXPECT_EQ(missing, nullptr);
    EXPECT_EQ(takeTexts(), "resource: absent.png: can't be imported\n");
    Effect& quad = builder.addQuad(builder.getRoot(), "Quad", missing, BlendMode::Solid, {0, 0, 1, 1});
    EXPECT_EQ(quad.findProperty("Texture")->toString(), "");
    EXPECT_EQ(builder.addEffect(builder.getRoot(), "Texture/Textur", "Quad"), nullptr);
    EXPECT_EQ(builder.addNode("Type/Flaot", "Number"), nullptr);
    EXPECT_FALSE(builder.addLink(quad, "Color", quad, "Colour"));
    EXPECT_EQ(takeTexts(), "plugin: no library offers 'Texture/Textur'; nearest: 'Texture/Texture'\n"
                           "plugin: no library offers 'Type/Flaot'; nearest: 'Type/Float'\n"
                           "property: TextureEffect 'Quad' has no property 'Colour'; nearest: 'Color'\n");
    EXPECT_EQ(&builder.getComposition(), &composition());
}

} // namespace helvantine::test
