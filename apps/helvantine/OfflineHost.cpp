// SPDX-License-Identifier: MIT
#include "OfflineHost.h"

#include "CompositionChoice.h"
#include "DocumentReader.h"
#include "FrameContext.h"
#include "Interruption.h"
#include "ObjectPath.h"

#include <helvantine/audio/AudioDevice.h>
#include <helvantine/core/Random.h>
#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/ResourceManager.h>
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

} // namespace

OfflineHost::OfflineHost(bool validation, std::optional<int> preroll)
    : m_validation(validation), m_preroll(preroll)
{
    createApplication();
}

OfflineHost::~OfflineHost()
{
    closeApplication();
}

void OfflineHost::createApplication()
{
    Renderer::enableValidation(m_validation);
    m_application = std::make_unique<Application>(getExecutableFolder().c_str(), true);
    if (g_renderer) {
        g_renderer->setOffline(true);
        g_renderer->setTimed(true);
    }
    if (m_application->getAudioDevice())
        m_application->getAudioDevice()->setHostClock(true);
}

void OfflineHost::closeApplication()
{
    m_target = nullptr;
    m_composition = nullptr;
    m_application.reset();
}

const ProjectSettings& OfflineHost::settings() const
{
    return *m_application->getDocument()->getProjectSettings();
}

std::string OfflineHost::load(const std::string& path)
{
    m_path = path;
    seedRandom(0);
    const Stopwatch watch(m_times.load);
    std::string error = readDocument(*m_application, m_scratch, path);
    if (!error.empty())
        return error;
    if (!m_application->getDocument()->getZipVfs())
        return path + ": no Helvantine document";
    return {};
}

std::string OfflineHost::choose(const std::string& name)
{
    m_compositionName = name;
    return chooseComposition(*m_application->getDocument(), m_path, name, m_composition);
}

std::string OfflineHost::setSize(FrameSize size)
{
    if (!g_renderer)
        return "there is no device to render with";
    m_size = size;
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
    m_application->warmUp(m_composition->m_id);
    g_renderer->popRenderTarget();
}

void OfflineHost::tick(int frame)
{
    const Stopwatch watch(m_times.tick);
    auto context = makeFrameContext<FxUpdateContext>(frame, settings().getFrameRate());
    m_application->update(m_composition->m_id, context);
    if (m_application->getAudioDevice())
        m_application->getAudioDevice()->advance(1.0 / settings().getFrameRate());
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
    m_application->render(m_composition->m_id, context);
    g_renderer->endFrame();
    m_times.gpu += g_renderer->getStats().gpuSecondsLastFrame;
    m_drawnFrame = frame;
    ++m_drawnCount;
}

std::string OfflineHost::draw(int frame, std::vector<uint8_t>& pixels)
{
    std::string error = drawWithThoseBefore(frame);
    if (error.empty() && !m_drawsAll && g_renderer->findCarried(m_target.get()).any) {
        m_carrier = findCarrier();
        m_drawsAll = !m_preroll;
        if (m_drawsAll)
            error = beginAnew();
        if (m_drawsAll && error.empty())
            error = drawWithThoseBefore(frame);
    }
    const Stopwatch watch(m_times.draw);
    if (error.empty() && !g_renderer->readBack(m_target.get(), pixels))
        error = formatString("frame %d can't be read back", frame);
    return error;
}

/// Nothing of what was drawn before is left: a new application, with a device and a document of its own.
std::string OfflineHost::beginAnew()
{
    if (m_documentListener)
        m_documentListener(nullptr);
    closeApplication();
    createApplication();
    m_nextFrame = 0;
    m_drawnFrame = -1;
    std::string error = load(m_path);
    if (error.empty() && m_documentListener)
        m_documentListener(&document());
    if (error.empty())
        error = choose(m_compositionName);
    return error.empty() ? setSize(m_size) : error;
}

std::string OfflineHost::drawWithThoseBefore(int frame)
{
    const int first = m_drawsAll ? 0 : frame - m_preroll.value_or(1);
    while (m_nextFrame <= frame) {
        if (isInterrupted())
            return formatString("interrupted before frame %d", frame);
        if (m_nextFrame < first) {
            tick(m_nextFrame);
            continue;
        }
        if (m_nextFrame > m_drawnFrame + 1)
            g_renderer->skipFrames();
        drawFrame(m_nextFrame);
    }
    return {};
}

std::string OfflineHost::findCarrier() const
{
    const RenderTarget* target = g_renderer->findCarried(m_target.get()).target;
    const ResourceManager& resources = *m_application->getDocument()->getResourceManager();
    for (const SmartRef<Resource>& resource : resources.getResourcesExcludingFolders()) {
        const auto* candidate = resource->isOfType(&RenderTargetResource::m_typeInfo)
                                    ? static_cast<const RenderTargetResource*>(resource.get())
                                    : nullptr;
        if (target && candidate && candidate->getRenderTarget() == target)
            return '"' + getPath(*resource) + '"';
    }
    return "what an effect remembers";
}

void OfflineHost::drawAlone(int frame)
{
    drawFrame(frame);
}

} // namespace helvantine::tool
