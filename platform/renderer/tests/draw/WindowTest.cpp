// SPDX-License-Identifier: MIT
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/testsupport/RenderingTest.h>
#include <helvantine/testsupport/TemporaryFolder.h>

#include <cstdlib>
#include <functional>

namespace helvantine::test
{
namespace
{

constexpr unsigned visibleStyle = RenderWindow::Visible | RenderWindow::Framed | RenderWindow::Resizable;

bool hasDisplay()
{
    return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
}

TEST(Window, AHiddenWindowNeedsNoDisplay)
{
    RenderWindow window;
    EXPECT_EQ(window.getWidth(), 0u);
    ASSERT_TRUE(window.create(960, 540, "", 0, nullptr));
    EXPECT_EQ(window.getWidth(), 960u);
    EXPECT_EQ(window.getHeight(), 540u);
    window.setTitle("title");
    window.setIcon("/no/such/file.png");
    window.setFullscreen(true);
    WindowEvent event;
    EXPECT_FALSE(window.pollEvent(event));
}

TEST(Window, SaysWhyItCantBeMade)
{
    takeProblems();
    RenderWindow window;
    EXPECT_FALSE(window.create(0, 540, "", 0, nullptr));
    const std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0].module, "window");
    EXPECT_EQ(problems[0].text, "0 by 540 pixels, sides from 1 to 16384 are possible");

    if (hasDisplay())
        GTEST_SKIP() << "there is a display";
    EXPECT_FALSE(window.create(64, 48, "", visibleStyle, nullptr));
    const std::vector<Problem> reported = takeProblems();
    ASSERT_EQ(reported.size(), 1u);
    EXPECT_EQ(reported[0].text.substr(0, 11), "no display:");
    EXPECT_EQ(window.getWidth(), 0u);
}

class WindowOnDisplay : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!hasDisplay())
            GTEST_SKIP() << "no display: DISPLAY and WAYLAND_DISPLAY are not set";
        takeProblems();
        Renderer::enableValidation(true);
        ASSERT_TRUE(m_window.create(160, 120, "window", visibleStyle, nullptr)) << takeProblems()[0].text;
    }

    void createRenderer(bool verticalSync, unsigned samples = 1)
    {
        DXGI_MODE_DESC mode;
        mode.Width = 160;
        mode.Height = 120;
        m_renderer = std::make_unique<Renderer>();
        ASSERT_TRUE(m_renderer->create(mode, false, verticalSync, samples, 0, &m_window, false))
            << takeProblems()[0].text;
    }

    void showFrames(int count)
    {
        for (int frame = 0; frame < count; ++frame) {
            m_renderer->beginFrame(nullptr);
            m_renderer->clear(Renderer::ClearColor, {float(frame % 2), 0.5f, 0, 1}, 1, 0);
            m_renderer->endFrame();
            m_renderer->present();
        }
    }

    /// The window's server takes its time; it gets two seconds.
    void showFramesUntil(const std::function<bool()>& isDone)
    {
        const double begin = getTime();
        do {
            drainEvents();
            showFrames(1);
        } while (!isDone() && getTime() < begin + 2);
        drainEvents();
    }

    void drainEvents()
    {
        WindowEvent event;
        while (m_window.pollEvent(event))
            m_lastResize = event.type == WindowEvent::Type::Resize ? event : m_lastResize;
    }

    void expectNoProblems()
    {
        m_renderer.reset();
        for (const Problem& problem : takeProblems())
            ADD_FAILURE() << problem.module << ": " << problem.text;
    }

    RenderWindow m_window;
    std::unique_ptr<Renderer> m_renderer;
    WindowEvent m_lastResize;
};

TEST_F(WindowOnDisplay, ShowsFramesWithAndWithoutVerticalSync)
{
    for (const bool verticalSync : {false, true}) {
        createRenderer(verticalSync, verticalSync ? 4 : 1);
        showFrames(10);
        drainEvents();
        expectNoProblems();
    }
}

TEST_F(WindowOnDisplay, GoesOnWhenItBecomesFullScreenAndSaysItsSize)
{
    createRenderer(false);
    showFrames(3);
    m_window.setFullscreen(true);
    showFramesUntil([&] { return m_lastResize.width > 160; });
    EXPECT_GT(m_window.getWidth(), 160u);
    EXPECT_EQ(unsigned(m_lastResize.width), m_window.getWidth());
    EXPECT_EQ(unsigned(m_lastResize.height), m_window.getHeight());
    m_window.setFullscreen(false);
    showFramesUntil([&] { return m_window.getWidth() == 160; });
    EXPECT_EQ(m_window.getWidth(), 160u);
    EXPECT_EQ(unsigned(m_lastResize.width), 160u);
    expectNoProblems();
}

} // namespace
} // namespace helvantine::test
