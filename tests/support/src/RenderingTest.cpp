// SPDX-License-Identifier: MIT
#include <helvantine/testsupport/RenderingTest.h>

#include <helvantine/core/Report.h>

namespace helvantine::test
{

void expectCleanRenderer(const Renderer& renderer)
{
    EXPECT_EQ(renderer.getRenderTargetCount(), 0u) << "a render target was left on the stack";
    EXPECT_EQ(renderer.getViewport(), nullptr) << "a viewport was left on the stack";
    for (const Problem& problem : takeProblems()) {
        if (problem.module == "validation")
            ADD_FAILURE() << "validation: " << problem.text;
        else
            reportProblem(problem.module.c_str(), problem.text);
    }
}

Image readImage(Renderer& renderer, RenderTarget* target)
{
    std::vector<uint8_t> bytes;
    if (!renderer.readBack(target, bytes)) {
        ADD_FAILURE() << "the target can't be read back";
        return {};
    }
    const RenderTarget& source = target ? *target : *renderer.getBackBuffer();
    return Image::fromBytes(source.getWidth(), source.getHeight(), source.getFormat(), bytes);
}

RenderingTest::RenderingTest(unsigned width, unsigned height) : m_width(width), m_height(height) {}

RenderingTest::~RenderingTest() = default;

void RenderingTest::SetUp()
{
    takeProblems();
    Renderer::enableValidation(true);
    ASSERT_TRUE(m_window.create(m_width, m_height, "", 0, nullptr));
    DXGI_MODE_DESC mode = {};
    mode.Width = m_width;
    mode.Height = m_height;
    mode.RefreshRate.Denominator = 1;
    m_renderer = std::make_unique<Renderer>();
    const bool created = m_renderer->create(mode, false, false, 1, 0, &m_window, true);
    for (const Problem& problem : created ? std::vector<Problem>() : takeProblems())
        ADD_FAILURE() << problem.module << ": " << problem.text;
    ASSERT_TRUE(created);
    m_renderer->setOffline(true);
}

void RenderingTest::TearDown()
{
    if (!m_renderer)
        return;
    expectCleanRenderer(*m_renderer);
    // Destroying the device is watched as well.
    m_renderer.reset();
    for (const Problem& problem : takeProblems())
        EXPECT_NE(problem.module, "validation") << problem.text;
}

Image RenderingTest::draw(const std::function<void()>& body)
{
    m_renderer->beginFrame(nullptr);
    m_renderer->clear(Renderer::ClearColor | Renderer::ClearDepth, Vec4(0, 0, 0, 0), 1.0f, 0);
    body();
    m_renderer->endFrame();
    return readImage(*m_renderer, nullptr);
}

} // namespace helvantine::test
