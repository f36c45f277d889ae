// SPDX-License-Identifier: MIT
#include <helvantine/core/Keyframe.h>
#include <helvantine/core/Report.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

UniqueId makeId(int number)
{
    char text[40];
    snprintf(text, sizeof(text), "00000000-0000-0000-0000-%012d", number);
    return stringToUniqueId(text);
}

struct LastProgress final : FxSerializerListener
{
    void onProgress(unsigned done, unsigned total) override { left = total - done; }
    unsigned left = 1;
};

/// Reads the document of a version that lies in the tree, which is never written again.
class FormatVersionTest : public ProjectTest, public testing::WithParamInterface<int>
{
protected:
    void SetUp() override
    {
        takeProblems();
        const std::string name = "version-" + std::to_string(GetParam()) + ".hfx";
        application().loadDocument((std::string(HELVANTINE_TEST_DOCUMENTS "/") + name).c_str(),
                                   folder().getPath().c_str(), &m_progress);
        EXPECT_TRUE(takeProblems().empty());
        EXPECT_TRUE(document().getLoadProblems().empty());
        ASSERT_EQ(document().getVersion(), static_cast<unsigned>(GetParam()));
    }
    Composition& root() { return *document().getCompositionManager()->getRoot(); }

    LastProgress m_progress;
};

} // namespace

TEST_P(FormatVersionTest, BringsItsValuesAndTheDefaultsOfItsTime)
{
    const int version = GetParam();
    const ProjectSettings& settings = *document().getProjectSettings();
    EXPECT_EQ(settings.getTitle(), "Version " + std::to_string(version));
    EXPECT_EQ(settings.getFrameRate(), 25);
    EXPECT_EQ(settings.getWidth(), version >= 2 ? 640u : 1280u);
    EXPECT_EQ(settings.getHeight(), version >= 2 ? 360u : 720u);

    const Resource* old = document().getResourceManager()->getRoot()->findResource(makeId(3));
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(old->getName(), "old");
    EXPECT_EQ(old->getDescription(), version < 6 ? "about old" : "");

    const Composition& main = *root().m_compositions.at(0);
    EXPECT_EQ(main.m_fov, version >= 3 ? 33.0f : 45.0f);
    EXPECT_EQ(main.m_camera->findGroup("Transformation")->findProperty("Position")->toString(),
              version >= 5 ? "1.000000, 2.000000, 3.000000" : "0.000000, 0.000000, -512.000000");
    EXPECT_EQ(main.m_camera->m_id == makeId(201), version >= 5);
    if (version >= 7) {
        EXPECT_EQ(m_progress.left, 0u) << "the file's last number is that of the objects in it";
    }
}

TEST_P(FormatVersionTest, BringsTheTreeAndTheGraph)
{
    const Composition& main = *root().m_compositions.at(0);
    EXPECT_TRUE(root().m_isFolder);
    EXPECT_EQ(main.m_name, "Main");
    const auto* clear = static_cast<ClearScreenEffect*>(main.findObject(makeId(20)));
    ASSERT_NE(clear, nullptr);
    EXPECT_EQ(clear->m_start, 5);
    EXPECT_EQ(clear->m_end, 50);
    const PropertyGroup* attributes = const_cast<ClearScreenEffect*>(clear)->findGroup("Attributes");
    EXPECT_EQ(attributes->findProperty("Color")->toString(), "0.250000, 0.500000, 0.750000, 1.000000");
    EXPECT_EQ(attributes->findProperty("Color")->m_keyframe->getKeys().size(), 2u);
    EXPECT_EQ(attributes->findProperty("Depth")->toString(), "0.500000");
    EXPECT_EQ(attributes->findProperty("Stencil")->toString(), "0") << "not in the file";
    EXPECT_EQ(main.m_schematics->m_nodes.size(), 1u);
    EXPECT_EQ(main.m_schematics->m_links.size(), 1u);
    EXPECT_EQ(clear->m_effectNode->m_position.x, 210.0f);
}

TEST_P(FormatVersionTest, IsSavedInTheCurrentFormatAndReadAgain)
{
    const TemporaryFolder place;
    const TemporaryFolder cache;
    application().saveDocument(place.file("first").c_str());
    application().loadDocument(place.file("first").c_str(), cache.getPath().c_str(), nullptr);
    EXPECT_EQ(document().getVersion(), g_formatVersion);
    EXPECT_TRUE(document().getLoadProblems().empty());
    application().saveDocument(place.file("second").c_str());
    EXPECT_EQ(readFile(place.file("second")), readFile(place.file("first")));
}

INSTANTIATE_TEST_SUITE_P(Versions, FormatVersionTest, testing::Range(1, 8));
