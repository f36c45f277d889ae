// SPDX-License-Identifier: MIT
#include "OfflineHost.h"

#include "CompositionChoice.h"
#include "DocumentReader.h"
#include "FrameContext.h"

#include <helvantine/audio/AudioDevice.h>
#include <helvantine/core/Random.h>
#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/FxContext.h>

namespace helvantine::tool
{

namespace
{

/// Adds the time that it lives to a sum.
class Stopwatch
{
public:
    explicit Stopwatch(double& sum) : m_sum(sum), m_started(getTime()) {}
    ~Stopwatch() { m_sum += getTime() - m_started; }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

private:
    double& m_sum;
    double m_started;
};

bool prepareValidation(bool validation)
{
    Renderer::enableValidation(validation);
    return true;
}

} // namespace

OfflineHost::OfflineHost(bool validation)
    : m_application(getExecutableFolder().c_str(), prepareValidation(validation))
{
    if (g_renderer) {
        g_renderer->setOffline(true);
        g_renderer->setTimed(true);
    }
    if (m_application.getAudioDevice())
        m_application.getAudioDevice()->setHostClock(true);
}

OfflineHost::~OfflineHost()
{
    m_target = nullptr;
    m_composition = nullptr;
}

const ProjectSettings& OfflineHost::settings() const
{
    return *m_application.getDocument()->getProjectSettings();
}

std::string OfflineHost::load(const std::string& path)
{
    m_path = path;
    seedRandom(0);
    const Stopwatch watch(m_times.load);
    std::string error = readDocument(m_application, m_scratch, path);
    if (!error.empty())
        return error;
    if (!m_application.getDocument()->getZipVfs())
        return path + ": no Helvantine document";
    return {};
}

std::string OfflineHost::choose(const std::string& name)
{
    return chooseComposition(*m_application.getDocument(), m_path, name, m_composition);
}

std::string OfflineHost::setSize(FrameSize size)
{
    if (!g_renderer)
        return "there is no device to render with";
    m_target = createRenderTarget(size.width, size.height, DXGI_FORMAT_B8G8R8A8_UNORM, 1, 0,
                                  DXGI_FORMAT_D24_UNORM_S8_UINT);
    if (!m_target)
        return formatString("a picture of %u by %u can't be made on this device", size.width, size.height);
    warmUp();
    return {};
}

void OfflineHost::warmUp()
{
    const Stopwatch watch(m_times.load);
    g_renderer->pushRenderTarget(m_target.get());
    m_application.warmUp(m_composition->m_id);
    g_renderer->popRenderTarget();
}

void OfflineHost::tick(int frame)
{
    const Stopwatch watch(m_times.tick);
    auto context = makeFrameContext<FxUpdateContext>(frame, settings().getFrameRate());
    m_application.update(m_composition->m_id, context);
    if (m_application.getAudioDevice())
        m_application.getAudioDevice()->advance(1.0 / settings().getFrameRate());
    m_nextFrame = frame + 1;
}

void OfflineHost::drawFrame(int frame)
{
    g_renderer->beginFrame(m_target.get());
    // What a composition leaves uncovered is black, and not what the frame before has left.
    g_renderer->clear(Renderer::ClearColor | Renderer::ClearDepth, Vec4(0, 0, 0, 1), 1.0f, 0);
    tick(frame);
    const Stopwatch watch(m_times.draw);
    auto context = makeFrameContext<FxRenderContext>(frame, settings().getFrameRate());
    m_application.render(m_composition->m_id, context);
    g_renderer->endFrame();
    m_times.gpu += g_renderer->getStats().gpuSecondsLastFrame;
    m_drawnFrame = frame;
}

std::string OfflineHost::draw(int frame, std::vector<uint8_t>& pixels)
{
    while (m_nextFrame < frame - 1)
        tick(m_nextFrame);
    while (m_nextFrame <= frame)
        drawFrame(m_nextFrame);
    const Stopwatch watch(m_times.draw);
    return g_renderer->readBack(m_target.get(), pixels) ? std::string()
                                                        : formatString("frame %d can't be read back", frame);
}

std::string OfflineHost::drawAlone(int frame)
{
    std::vector<uint8_t> pixels;
    m_nextFrame = frame;
    return draw(frame, pixels);
}

} // namespace helvantine::tool
