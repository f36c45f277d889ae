// SPDX-License-Identifier: MIT
// Draws a frame of a document twice, each time from a fresh start, and tells whether both are the same picture.
//
//     embed-repeat DOCUMENT FRAME
#include "CommandLine.h"

#include <helvantine/audio/AudioDevice.h>
#include <helvantine/core/Random.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/System.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/serialize/LoadProblem.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/FxContext.h>

#include <cstdlib>
#include <iostream>
#include <vector>

using namespace helvantine;

/// Puts whatever has a clock under the host's.
void prepare(Application& application)
{
    if (g_renderer)
        g_renderer->setOffline(true); // a query is answered in the next frame
    if (AudioDevice* audio = application.getAudioDevice())
        audio->setHostClock(true);
    seedRandom(0); // before loading
}

/// Shows what went wrong; true if nothing did.
bool showProblems(const Document& document)
{
    for (const LoadProblem& problem : document.getLoadProblems())
        std::cerr << problem.file << ", " << problem.record << ", byte " << problem.offset << ": "
                  << problem.found << ", expected " << problem.expected << "\n";
    const std::vector<Problem> problems = takeProblems();
    for (const Problem& problem : problems)
        std::cerr << problem.module << ": " << problem.text << "\n";
    return problems.empty() && document.getLoadProblems().empty();
}

template <class Context>
Context makeContext(int frame, int frameRate)
{
    Context context;
    context.frame = frame;
    context.time = static_cast<float>(static_cast<double>(frame) / frameRate); // adding up would drift
    context.isPlaying = true;
    return context;
}

/// Ticks all frames up to the last, and draws the last two: an effect may look back by one.
void drawFrame(Application& application, const UniqueId& composition, RenderTarget& target, int last)
{
    const int frameRate = application.getDocument()->getProjectSettings()->getFrameRate();
    for (int frame = 0; frame <= last; ++frame) {
        auto update = makeContext<FxUpdateContext>(frame, frameRate);
        auto render = makeContext<FxRenderContext>(frame, frameRate);
        g_renderer->beginFrame(&target);
        g_renderer->clear(Renderer::ClearColor | Renderer::ClearDepth, Vec4(0, 0, 0, 1), 1.0f, 0);
        application.update(composition, update);
        if (AudioDevice* audio = application.getAudioDevice())
            audio->advance(1.0 / frameRate);
        if (frame + 1 >= last)
            application.render(composition, render);
        g_renderer->endFrame();
    }
}

/// The pixels of one frame, as a program gets them that has just started; none on failure.
std::vector<uint8_t> makePicture(const char* path, int frame)
{
    std::vector<uint8_t> pixels;
    Application application(getExecutableFolder().c_str(), true);
    prepare(application);
    application.loadDocument(path, nullptr, nullptr);
    const auto& compositions = application.getDocument()->getCompositionManager()->getRoot()->m_compositions;
    if (!showProblems(*application.getDocument()) || compositions.empty() || !g_renderer)
        return pixels;
    const SmartRef<RenderTarget> target(
        createRenderTarget(640, 360, DXGI_FORMAT_B8G8R8A8_UNORM, 1, 0, DXGI_FORMAT_D24_UNORM_S8_UINT));
    if (!target)
        return pixels;
    drawFrame(application, compositions[0]->m_id, *target, frame);
    g_renderer->readBack(target.get(), pixels);
    return pixels;
}

int main(int argc, char** argv)
{
    if (const auto exitCode = answerUsage(argc, argv, "DOCUMENT FRAME", 2))
        return *exitCode;
    const int frame = std::atoi(argv[2]);
    const std::vector<uint8_t> first = makePicture(argv[1], frame);
    const bool same = !first.empty() && first == makePicture(argv[1], frame);
    std::cout << (same ? "the same picture\n" : "not the same picture\n");
    return same ? 0 : 1;
}
