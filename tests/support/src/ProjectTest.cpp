// SPDX-License-Identifier: MIT
#include <helvantine/testsupport/ProjectTest.h>

#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/timeline/Composition.h>

namespace helvantine::test
{

namespace
{

std::unique_ptr<Application> makeApplication(bool createDevice)
{
    takeProblems();
    Renderer::enableValidation(true);
    return std::make_unique<Application>(getExecutableFolder().c_str(), createDevice);
}

template <class Context>
Context makeContext(const Document& document, int frame)
{
    Context context = {};
    context.frame = frame;
    context.time =
        static_cast<float>(frame) / static_cast<float>(document.getProjectSettings()->getFrameRate());
    context.isPlaying = true;
    return context;
}

} // namespace

ProjectTest::ProjectTest(bool createDevice) : m_application(makeApplication(createDevice))
{
    newDocument();
}

ProjectTest::~ProjectTest()
{
    m_composition = nullptr;
    m_application.reset();
}

void ProjectTest::newDocument()
{
    m_composition = nullptr;
    m_application->newDocument(m_folder.getPath().c_str());
    m_composition = new Composition(true, true);
    m_composition->setName("Main");
    document().getCompositionManager()->getRoot()->addComposition(m_composition.get());
}

void ProjectTest::tick(int frame)
{
    FxUpdateContext context = makeContext<FxUpdateContext>(document(), frame);
    m_application->update(m_composition->m_id, context);
}

DrawingTest::DrawingTest(unsigned width, unsigned height)
    : ProjectTest(true), m_width(width), m_height(height)
{
}

void DrawingTest::SetUp()
{
    for (const Problem& problem : g_renderer ? std::vector<Problem>() : takeProblems())
        ADD_FAILURE() << problem.module << ": " << problem.text;
    ASSERT_NE(g_renderer, nullptr);
    g_renderer->setOffline(true);
}

void DrawingTest::TearDown()
{
    if (g_renderer)
        expectCleanRenderer(*g_renderer);
}

Image DrawingTest::render(int frame)
{
    const SmartRef<RenderTarget> target(createRenderTarget(m_width, m_height, DXGI_FORMAT_B8G8R8A8_UNORM, 1,
                                                           0, DXGI_FORMAT_D24_UNORM_S8_UINT));
    if (!target) {
        ADD_FAILURE() << "no target of " << m_width << " by " << m_height;
        return {};
    }
    g_renderer->beginFrame(target.get());
    tick(frame);
    FxRenderContext context = makeContext<FxRenderContext>(document(), frame);
    application().render(composition().m_id, context);
    g_renderer->endFrame();
    return readImage(*g_renderer, target.get());
}

} // namespace helvantine::test
