// SPDX-License-Identifier: MIT
// A host that knows the plugin's classes by their menu paths alone.
//
//     silk-host make DOCUMENT PALETTE      makes a document with them and saves it
//     silk-host show DOCUMENT [PICTURE]    loads a document, says what is in it, and draws its second second
#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionBuilder.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <cstdio>
#include <fstream>
#include <string_view>

using namespace helvantine;

namespace
{

constexpr int s_frameRate = 60; // a new project's

void make(const std::string& document, const std::string& palette)
{
    // The working copies of the document's files lie beside it, and are known by their names in there.
    const std::string files = document + ".files/";
    const std::string name = getFilename(palette.c_str());
    copyFile(palette.c_str(), (files + name).c_str(), true);
    g_application->newDocument(files.c_str());

    CompositionBuilder builder(*g_application->getDocument(), "Silk", 10 * s_frameRate);
    builder.addEffect(builder.getRoot(), "Screen/Clear Screen", "Backdrop");
    Effect* silk = builder.addEffect(builder.getRoot(), "Silk/Silk", "Silk");
    SchematicsNode* beat = builder.addNode("Silk/Beat", "Beat");
    const Resource* colours =
        getResourceManager()->addImported(create<ResourceImporter>("Silk/Palette"), name.c_str());
    if (!silk || !beat || !colours) // which has been reported
        return;
    silk->setProperty("Palette", colours);
    builder.addLink(*beat, "Pulse", *silk, "Glow");
    g_application->saveDocument(document.c_str());
}

void list(const Composition& composition)
{
    for (const auto& resource : getResourceManager()->getResourcesExcludingFolders())
        std::printf("resource %s (%s)\n", resource->getName().c_str(), resource->getTypeInfo()->name);
    for (const auto& effect : composition.m_rootEffect->m_children)
        std::printf("effect %s (%s)\n", effect->m_name.c_str(), effect->getTypeInfo()->name);
    for (const auto& node : composition.m_schematics->m_nodes)
        std::printf("node %s (%s)\n", node->m_name.c_str(), node->getTypeInfo()->name);
    std::printf("links %zu\n", composition.m_schematics->m_links.size());
}

/// Draws one frame of 960 by 540 and writes it as a PPM file.
void draw(const Composition& composition, int frame, const char* path)
{
    FxUpdateContext update;
    update.frame = frame;
    update.time = static_cast<float>(frame) / s_frameRate;
    FxRenderContext render;
    render.frame = update.frame;
    render.time = update.time;
    g_renderer->beginFrame(nullptr);
    g_application->update(composition.m_id, update);
    g_application->render(composition.m_id, render);
    g_renderer->endFrame();

    const RenderTarget& target = *g_renderer->getBackBuffer();
    std::vector<std::uint8_t> pixels; // blue, green, red, alpha
    g_renderer->readBack(nullptr, pixels);
    std::ofstream file(path, std::ios::binary);
    file << "P6 " << target.getWidth() << ' ' << target.getHeight() << " 255\n";
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4)
        file.put(static_cast<char>(pixels[i + 2]))
            .put(static_cast<char>(pixels[i + 1]))
            .put(static_cast<char>(pixels[i]));
}

void show(const char* document, const char* picture)
{
    g_application->loadDocument(document, nullptr, nullptr);
    const Composition& root = *g_application->getDocument()->getCompositionManager()->getRoot();
    for (const auto& composition : root.m_compositions) {
        list(*composition);
        if (picture && g_renderer)
            draw(*composition, 2 * s_frameRate + 3, picture);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view command = argc > 1 ? argv[1] : "";
    const bool makes = command == "make" && argc == 4;
    const bool shows = command == "show" && (argc == 3 || argc == 4);
    if (!makes && !shows) {
        const bool asksForHelp = command == "--help";
        std::fputs("usage: silk-host make DOCUMENT PALETTE\n       silk-host show DOCUMENT [PICTURE]\n",
                   asksForHelp ? stdout : stderr);
        return asksForHelp ? 0 : 2;
    }
    // The folder of this program, which took its runtime from there: see CMakeLists.txt.
    Application application(getExecutableFolder().c_str(), !makes && argc == 4);
    if (makes)
        make(argv[2], argv[3]);
    else
        show(argv[2], argc == 4 ? argv[3] : nullptr);
    const std::vector<Problem> problems = takeProblems();
    for (const Problem& problem : problems)
        std::fprintf(stderr, "%s: %s\n", problem.module.c_str(), problem.text.c_str());
    return problems.empty() ? 0 : 1;
}
