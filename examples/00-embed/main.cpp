// SPDX-License-Identifier: MIT
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/FxContext.h>
#include <iostream>

using namespace helvantine;

int main(int argc, char** argv)
{
    const std::string path = argc > 1 ? argv[1] : "first-light.hfx";
    if (path == "--help") {
        std::cout << "usage: embed [DOCUMENT]\n";
        return 0;
    }
    // The plugin libraries, this runtime's among them, lie beside the program; true makes a hidden device.
    Application application(getExecutableFolder().c_str(), true);
    application.loadDocument(path.c_str(), nullptr, nullptr);
    const auto& compositions = application.getDocument()->getCompositionManager()->getRoot()->m_compositions;
    for (int frame = 0; frame < 30 && !compositions.empty() && g_renderer; ++frame) {
        FxUpdateContext update;
        update.frame = frame;
        update.time = frame / 30.0f;
        FxRenderContext render;
        render.frame = update.frame;
        render.time = update.time;
        g_renderer->beginFrame(nullptr); // into the back buffer
        application.update(compositions[0]->m_id, update);
        application.render(compositions[0]->m_id, render);
        g_renderer->endFrame();
        g_renderer->present();
    }
    const std::vector<Problem> problems = takeProblems();
    for (const Problem& problem : problems)
        std::cerr << problem.module << ": " << problem.text << "\n";
    return problems.empty() ? 0 : 1;
}
