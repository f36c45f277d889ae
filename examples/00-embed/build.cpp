// SPDX-License-Identifier: MIT
// Builds a document from nothing, edits it and saves it. No device is needed.
//
//     embed-build DOCUMENT
#include "CommandLine.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Keyframe.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionBuilder.h>
#include <helvantine/host/Document.h>
#include <helvantine/object/Property.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/resource/ResourceManager.h>

#include <cstdint>
#include <iostream>

using namespace helvantine;

/// A square that slides and brightens, and one below it that takes its colour.
Effect& fill(CompositionBuilder& builder, ResourceManager& resources)
{
    const std::uint32_t white = 0xFFFFFFFF; // a picture of one pixel, which becomes a file of the document
    const Resource* picture = resources.addTexture(
        "white.tga", TexturePixels{.width = 1, .height = 1, .data = &white, .size = sizeof(white)});

    Effect& leader =
        builder.addQuad(builder.getRoot(), "Leader", picture, BlendMode::Solid, {100, 120, 120, 120});
    leader.animateProperty("Position", KeyModeBezier, {{0, {100, 120, 0}}, {2, {740, 120, 0}}});
    leader.animateProperty("Color", KeyModeLinear, {{0, {1, 0.2f, 0.1f, 1}}, {2, {1, 1, 1, 1}}});
    Effect& follower =
        builder.addQuad(builder.getRoot(), "Follower", picture, BlendMode::Solid, {100, 300, 120, 120});
    builder.addLink(leader, "Color", follower, "Color");
    builder.addEffect(builder.getRoot(), "Screen/Clear Screen", "Backdrop"); // by its path in menus
    return follower;
}

/// What an editor does to effects that are there.
void edit(Composition& composition, Effect& effect)
{
    effect.setProperty("Transformation.Size", {80, 80}); // "Size" alone would do: there is one
    effect.setProperty("Blend", "Additive");             // a label of the enumeration
    if (auto* pivot = effect.findPropertyOfType<Vec3Property>("Pivot"))
        *pivot = pivot->m_value * 0.5f;

    Layer& root = *composition.m_rootEffect;
    if (auto* backdrop = castTo<Effect>(root.m_children.back().get()))
        backdrop->moveTo(root, 0); // is drawn first
    Layer& group = root.addEffect<Layer>("Group", 0, 120);
    effect.moveTo(group, -1);
    if (SmartRef<Effect> copy = effect.clone()) { // nobody holds it yet
        group.addObject(copy.get(), -1);
        composition.removeEffect(copy.get()); // with what links lead to it
    }
}

int main(int argc, char** argv)
{
    if (const auto exitCode = answerUsage(argc, argv, "DOCUMENT", 1))
        return *exitCode;
    Application application(getExecutableFolder().c_str(), false);
    application.newDocument(nullptr);
    Document& document = *application.getDocument();
    CompositionBuilder builder(document, "Squares", 120);
    Effect& follower = fill(builder, *document.getResourceManager());
    edit(builder.getComposition(), follower);
    makeFolders(getPath(argv[1]).c_str());
    application.saveDocument(argv[1]);
    const std::vector<Problem> problems = takeProblems();
    for (const Problem& problem : problems)
        std::cerr << problem.module << ": " << problem.text << "\n";
    return problems.empty() ? 0 : 1;
}
