// SPDX-License-Identifier: MIT
#include "WindowHost.h"

#include "CompositionChoice.h"
#include "DocumentReader.h"
#include "FrameContext.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/FxContext.h>

namespace helvantine::tool
{

WindowHost::WindowHost(bool validation) : m_application(getExecutableFolder().c_str(), false)
{
    Renderer::enableValidation(validation);
}

WindowHost::~WindowHost()
{
    m_composition = nullptr;
}

const ProjectSettings& WindowHost::settings() const
{
    return *m_application.getDocument()->getProjectSettings();
}

std::string WindowHost::read(const Request& request)
{
    std::string error = readDocument(m_application, m_scratch, request.document);
    if (!error.empty())
        return error;
    if (!document().getZipVfs())
        return request.document + ": no Helvantine document";
    return chooseComposition(document(), request.document, request.composition, m_composition);
}

std::string WindowHost::open(const Request& request)
{
    // Twice: the window's size stands in the document, and its pictures are read once there is a device.
    {
        ProblemCapture first; // what the second reading says again
        if (std::string error = read(request); !error.empty())
            return error;
        first.take();
    }
    m_size = request.size.value_or(FrameSize{settings().getWidth(), settings().getHeight()});
    m_composition = nullptr;
    if (std::string error = createWindow(m_size, request.fullscreen); !error.empty())
        return error;
    if (std::string error = read(request); !error.empty())
        return error;
    g_renderer->pushRenderTarget(g_renderer->getBackBuffer());
    m_application.warmUp(m_composition->m_id);
    g_renderer->popRenderTarget();
    return {};
}

std::string WindowHost::createWindow(FrameSize size, bool fullscreen)
{
    DXGI_MODE_DESC mode = {};
    mode.Width = size.width;
    mode.Height = size.height;
    mode.RefreshRate.Denominator = 1;
    if (m_application.create(mode, fullscreen, true, 1, 0, settings().getTitle().c_str()))
        return {};
    std::string reason;
    for (const Problem& problem : takeProblems())
        reason += (reason.empty() ? "" : "; ") + problem.text;
    return formatString("no window of %u by %u pixels can be opened: %s", size.width, size.height,
                        reason.c_str());
}

void WindowHost::draw(int frame, bool playing, bool seeking)
{
    auto update = makeFrameContext<FxUpdateContext>(frame, settings().getFrameRate());
    auto render = makeFrameContext<FxRenderContext>(frame, settings().getFrameRate());
    update.isPlaying = render.isPlaying = playing;
    update.isSeeking = render.isSeeking = seeking;
    g_renderer->beginFrame(nullptr);
    // What a composition leaves uncovered is black, and not what the frame before has left.
    g_renderer->clear(Renderer::ClearColor | Renderer::ClearDepth, Vec4(0, 0, 0, 1), 1.0f, 0);
    m_application.update(m_composition->m_id, update);
    m_application.render(m_composition->m_id, render);
    g_renderer->endFrame();
    g_renderer->present();
}

void WindowHost::showAgain()
{
    g_renderer->present();
}

} // namespace helvantine::tool
