// SPDX-License-Identifier: MIT
#include <helvantine/audio/AudioDevice.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <cstdlib>

using namespace helvantine;
using namespace helvantine::test;

TEST(Application, WithoutADeviceHoldsDocumentsOnly)
{
    {
        Application application(getExecutableFolder().c_str(), false);
        EXPECT_EQ(g_application, &application);
        EXPECT_FALSE(application.getCreateDevice());
        EXPECT_FALSE(application.getPluginManager()->m_factories.empty());
        EXPECT_EQ(application.getDocument(), nullptr);
        EXPECT_EQ(application.getRenderer(), nullptr);
        EXPECT_EQ(application.getRenderWindow(), nullptr);
        EXPECT_EQ(application.getAudioDevice(), nullptr);
        EXPECT_EQ(g_renderer, nullptr);

        application.newDocument(nullptr);
        ASSERT_NE(application.getDocument(), nullptr);
        const CompositionManager* first = application.getDocument()->getCompositionManager();
        EXPECT_NE(first->getRoot(), nullptr);
    }
    EXPECT_EQ(g_application, nullptr);
}

TEST(Application, SaysOnceThatAFolderHoldsNoRuntime)
{
    const TemporaryFolder folder;
    takeProblems();
    Application application(folder.getPath().c_str(), false);
    application.newDocument(nullptr);
    const SmartRef<Composition> composition(new Composition(true, true));
    composition->m_rootEffect->addObject(createPluginOfType<Effect>(Layer::s_plugininfo.id), -1);
    composition->m_schematics->addNode(nullptr);
    application.getDocument()->getResourceManager()->getRoot()->addResource(nullptr);
    application.getDocument()->getCompositionManager()->getRoot()->addComposition(nullptr);
    composition->m_rootEffect->addProperty(nullptr);
    EXPECT_TRUE(composition->m_rootEffect->m_children.empty());

    std::string words;
    for (const Problem& problem : takeProblems())
        words += problem.module + ": " + problem.text + '\n';
    EXPECT_EQ(words, "plugin: no runtime classes in " + folder.getPath() +
                         ": Helvantine.Fx.dll belongs there\n"
                         "object: no child is added: it is null\n"
                         "object: no node is added: it is null\n"
                         "object: no resource is added: it is null\n"
                         "object: no composition is added: it is null\n"
                         "object: no property is added: it is null\n");
}

TEST(Application, MakesAHiddenDeviceOfItsOwn)
{
    Renderer::enableValidation(true);
    takeProblems();
    {
        Application application(getExecutableFolder().c_str(), true);
        ASSERT_EQ(g_renderer, application.getRenderer());
        EXPECT_EQ(application.getRenderWindow()->getWidth(), 960u);
        EXPECT_EQ(application.getRenderer()->getBackBuffer()->getHeight(), 540u);
        EXPECT_EQ(application.getAudioDevice()->getRate(), 44100);
    }
    EXPECT_EQ(g_renderer, nullptr);
    for (const Problem& problem : takeProblems())
        ADD_FAILURE() << problem.module << ": " << problem.text;
}

namespace
{

bool createWindow(Application& application, unsigned width)
{
    DXGI_MODE_DESC mode = {};
    mode.Width = width;
    mode.Height = 180;
    return application.create(mode, false, false, 1, 0, "Test");
}

/// Takes the displays away while it lives.
class NoDisplay
{
public:
    NoDisplay()
    {
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY"}) {
            if (const char* display = std::getenv(name))
                m_before.emplace_back(name, display);
            unsetenv(name);
        }
    }
    ~NoDisplay()
    {
        for (const auto& [name, display] : m_before)
            setenv(name.c_str(), display.c_str(), 1);
    }

private:
    std::vector<std::pair<std::string, std::string>> m_before;
};

} // namespace

TEST(Application, TellsThatAWindowCannotBeHadWithoutADisplay)
{
    const NoDisplay noDisplay;
    Application application(getExecutableFolder().c_str(), false);
    takeProblems();
    EXPECT_FALSE(createWindow(application, 320));
    EXPECT_FALSE(takeProblems().empty());
    EXPECT_NE(application.getRenderWindow(), nullptr) << "the new window object stays";
    EXPECT_EQ(application.getRenderer(), nullptr);
    EXPECT_EQ(application.getAudioDevice(), nullptr);
}

TEST(Application, ReplacesWindowAndRendererWhenCreatedAgain)
{
    if (!std::getenv("DISPLAY"))
        GTEST_SKIP() << "no display";
    takeProblems();
    Renderer::enableValidation(true);
    {
        Application application(getExecutableFolder().c_str(), false);
        for (const unsigned width : {320u, 200u}) {
            ASSERT_TRUE(createWindow(application, width)) << takeProblems()[0].text;
            EXPECT_EQ(application.getRenderWindow()->getWidth(), width);
            ASSERT_EQ(g_renderer, application.getRenderer());
            EXPECT_EQ(g_renderer->getBackBuffer()->getWidth(), width);
            g_renderer->beginFrame(nullptr);
            g_renderer->endFrame();
            g_renderer->present();
        }
    }
    for (const Problem& problem : takeProblems())
        ADD_FAILURE() << problem.module << ": " << problem.text;
}

TEST(Application, IsLostToASecondOne)
{
    const auto first = std::make_unique<Application>(getExecutableFolder().c_str(), false);
    {
        const Application second(getExecutableFolder().c_str(), false);
        EXPECT_EQ(g_application, &second);
    }
    EXPECT_EQ(g_application, nullptr);
}

namespace
{

class PlayingTest : public ProjectTest
{
};

} // namespace

TEST_F(PlayingTest, AnUnknownCompositionDoesNothing)
{
    FxUpdateContext context;
    context.time = 3.0f;
    context.fov = -1.0f;
    application().update(generateUniqueId(), context);
    EXPECT_EQ(context.fov, -1.0f);
    EXPECT_EQ(context.time, 3.0f);

    application().update(composition().m_id, context);
    EXPECT_NE(context.fov, -1.0f) << "the camera of a composition that is found writes its field of view";
}

namespace
{

class DrawnHost : public DrawingTest
{
protected:
    DrawnHost() : DrawingTest(16, 8) {}
};

} // namespace

TEST_F(DrawnHost, DrawsWhatIsInItsWindow)
{
    auto* effect = createPluginOfType<ClearScreenEffect>(ClearScreenEffect::s_plugininfo.id);
    composition().m_rootEffect->addObject(effect, -1);
    effect->onInit();
    effect->setStart(2);
    effect->setEnd(4);
    effect->findGroup("Attributes")->findProperty("Color")->fromString("1, 0.5, 0, 1");

    const Image clear(16, 8, Vec4(0, 0, 0, 0));
    const Image orange(16, 8, Vec4(1, 128.0f / 255, 0, 1));
    EXPECT_TRUE(matches(render(1), clear, {}, "before"));
    EXPECT_TRUE(matches(render(2), orange, {1.0f, 0.0f}, "first"));
    EXPECT_TRUE(matches(render(3), orange, {1.0f, 0.0f}, "last"));
    EXPECT_TRUE(matches(render(4), clear, {}, "behind"));
}
