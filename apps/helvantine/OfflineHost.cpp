// SPDX-License-Identifier: MIT
#include "OfflineHost.h"

#include "DocumentReader.h"

#include <helvantine/audio/AudioDevice.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Random.h>
#include <helvantine/core/System.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/FxContext.h>
#include <helvantine/timeline/Layer.h>

#include <functional>

namespace helvantine::tool
{

namespace
{

/// The first composition below, depth first, that passes the test; null if there is none.
Composition* findBelow(const Composition& parent, const std::function<bool(const Composition&)>& test)
{
    for (const SmartRef<Composition>& child : parent.m_compositions) {
        if (test(*child))
            return child.get();
        if (Composition* found = findBelow(*child, test))
            return found;
    }
    return nullptr;
}

/// The names of all compositions that are no folders, for the user to choose from.
std::string listNames(const Composition& root)
{
    std::string names;
    findBelow(root, [&](const Composition& composition) {
        if (!composition.m_isFolder)
            names += (names.empty() ? "\"" : ", \"") + composition.m_name + "\"";
        return false;
    });
    return names.empty() ? "none" : names;
}

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
    : m_application(getPath(getExecutablePath().c_str()).c_str(), prepareValidation(validation))
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
    const std::string error = readDocument(m_application, m_scratch, path);
    if (!error.empty())
        return error;
    if (!m_application.getDocument()->getZipVfs())
        return path + ": no Helvantine document";
    return {};
}

std::string OfflineHost::choose(const std::string& name)
{
    Composition& root = *m_application.getDocument()->getCompositionManager()->getRoot();
    if (name.empty()) {
        m_composition = findBelow(root, [](const Composition& candidate) { return !candidate.m_isFolder; });
        if (!m_composition && !root.m_rootEffect->m_children.empty())
            m_composition = &root;
        return m_composition ? std::string() : m_path + ": holds no composition to render";
    }
    const UniqueId id = stringToUniqueId(name.c_str());
    m_composition = findBelow(
        root, [&](const Composition& candidate) { return candidate.m_name == name || candidate.m_id == id; });
    return m_composition ? std::string()
                         : m_path + ": holds no composition \"" + name + "\"; there is: " + listNames(root);
}

std::string OfflineHost::setSize(FrameSize size)
{
    if (!g_renderer)
        return "there is no device to render with";
    m_target = createRenderTarget(size.width, size.height, DXGI_FORMAT_B8G8R8A8_UNORM, 1, 0,
                                  DXGI_FORMAT_D24_UNORM_S8_UINT);
    if (!m_target)
        return formatString("a picture of %u by %u can't be made on this device", size.width, size.height);
    const Stopwatch watch(m_times.load);
    g_renderer->pushRenderTarget(m_target.get());
    m_application.warmUp(m_composition->m_id);
    g_renderer->popRenderTarget();
    return {};
}

template <class Context>
Context OfflineHost::makeContext(int frame) const
{
    Context context;
    context.frame = frame;
    // From the number alone: adding up frame times would drift.
    context.time = static_cast<float>(static_cast<double>(frame) / settings().getFrameRate());
    context.isPlaying = true;
    return context;
}

void OfflineHost::tick(int frame)
{
    const Stopwatch watch(m_times.tick);
    auto context = makeContext<FxUpdateContext>(frame);
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
    auto context = makeContext<FxRenderContext>(frame);
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

} // namespace helvantine::tool
