// SPDX-License-Identifier: MIT
#include "DocumentCheck.h"

#include "ObjectPath.h"
#include "ShaderReview.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Text.h>
#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResourceImporter.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/serialize/LoadProblem.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace helvantine::tool
{

namespace
{

using Findings = std::vector<Finding>;

// Reading

struct LoadRule
{
    LoadProblem::Kind kind;
    const char* code;
    const char* advice;
};

constexpr LoadRule loadRules[] = {
    {LoadProblem::Kind::Damage, "script-unreadable", "restore the document from a copy that is whole"},
    {LoadProblem::Kind::UnknownClass, "class-unknown", "install the plugin library that has this class"},
    {LoadProblem::Kind::LostLink, "link-refused", "make the link anew, or save the document without it"},
    {LoadProblem::Kind::UnorderedKeys, "keys-unordered", "save the document, which puts them in order"},
};

// Resources

/// Looks at what an importer of textures would decode.
void checkPicture(const Resource& resource, const std::string& file, Findings& findings)
{
    std::string error;
    const ResourceImporter* importer = resource.getImporter();
    if (importer && importer->isOfType(&TextureResourceImporter::m_typeInfo) &&
        !checkTextureFile(file.c_str(), error))
        findings.push_back({"file-undecodable", getPath(resource),
                            std::string(importer->getTypeInfo()->name) + " can't read the file: " + error,
                            "replace the file by a png, bmp, tga, jpg or dds that is whole"});
}

void checkFile(const Resource& resource, const std::string& file, Findings& findings)
{
    if (!std::unique_ptr<Buffer>(openFile(file.c_str())))
        findings.push_back({"file-missing", getPath(resource), "file \"" + file + "\" isn't there",
                            "put the file back, or import the resource from another one"});
    else
        checkPicture(resource, file, findings);
}

void checkResource(const Resource& resource, Findings& findings)
{
    const ResourceImporter* importer = resource.getImporter();
    if (importer && !isClassKnown(importer->getPluginInfo()->id))
        findings.push_back({"class-unknown", getPath(resource),
                            "importer of unknown class " + uniqueIdToString(importer->getPluginInfo()->id),
                            "install the plugin library that has this class"});
    for (const std::string& file : resource.getFiles()) {
        if (!file.empty())
            checkFile(resource, file, findings);
    }
    checkTargetNumbers(resource, findings);
    if (importer)
        checkReferences(*importer, getPath(resource), findings);
}

// Windows

/// Frames on the composition's clock, half open.
struct Window
{
    std::int64_t first = std::numeric_limits<std::int64_t>::min();
    std::int64_t end = std::numeric_limits<std::int64_t>::max();
};

/// Looks at the topmost effects that never run; what stands below them never runs either. `open` is when the
/// parent runs.
void checkWindows(const Composition& composition, const Object& parent, const Window& open,
                  Findings& findings)
{
    for (const SmartRef<Object>& child : parent.m_children) {
        const std::int64_t start = child->getRelativeStartFrame();
        const std::int64_t length = child->getLength();
        const Window window{std::max(open.first, start), std::min(open.end, start + length)};
        std::string found, advice;
        if (length <= 0) {
            found = formatString("runs for %lld frames", static_cast<long long>(length));
            advice = "set the end behind the start";
        } else if (window.first >= window.end) {
            found = formatString("frames %lld to %lld are outside of those of \"%s\"",
                                 static_cast<long long>(start), static_cast<long long>(start + length - 1),
                                 getPath(composition, parent).c_str());
            advice = "move it into the frames of what it stands in";
        } else if (!parent.m_enabled) {
            found = "stands in \"" + getPath(composition, parent) + "\", which is disabled";
            advice = "enable that, or remove both";
        }
        if (found.empty())
            checkWindows(composition, *child, window, findings);
        else
            findings.push_back({"effect-never-runs", getPath(composition, *child), found, advice});
    }
}

void checkComposition(const Composition& composition, const ShaderReview& shaders, Findings& findings)
{
    for (const SmartRef<Object>& effect : composition.m_rootEffect->getAllObjects())
        checkReferences(*effect, getPath(composition, *effect), findings);
    checkReferences(*composition.m_camera, getPath(composition, *composition.m_camera), findings);
    for (const SmartRef<SchematicsNode>& node : composition.m_schematics->m_nodes) {
        if (!node)
            continue;
        checkReferences(*node, getPath(composition, *node), findings);
        checkShaderText(*node, getPath(composition, *node), shaders, findings);
    }
    checkTargets(composition, findings);
    checkCarriedTargets(composition, findings);
    checkWindows(composition, *composition.m_rootEffect, Window(), findings);
    checkGraph(composition, findings);
    for (const SmartRef<Composition>& child : composition.m_compositions)
        checkComposition(*child, shaders, findings);
}

} // namespace

void checkReading(const Document& document, Findings& findings)
{
    for (const LoadProblem& problem : document.getLoadProblems()) {
        // Resources that can't be made are judged by what they need: here there is no device to make them with.
        const auto* rule = std::find_if(std::begin(loadRules), std::end(loadRules),
                                        [&](const LoadRule& entry) { return entry.kind == problem.kind; });
        if (rule == std::end(loadRules))
            continue;
        std::string found = problem.found;
        if (problem.offset > 0)
            found += formatString(" at offset %llu of the script, in %s",
                                  static_cast<unsigned long long>(problem.offset), problem.record.c_str());
        found += "; expected: " + problem.expected;
        if (problem.endsReading)
            found += "; what follows is lost";
        findings.push_back({rule->code, problem.path, found, rule->advice});
    }
}

bool isClassKnown(const UniqueId& id)
{
    return g_application->getPluginManager()->containsPlugin(id);
}

bool isOfClass(const TypedObject& object, std::string_view name)
{
    const TypeInfo* type = object.getTypeInfo();
    while (type && type->name != name)
        type = type->parent;
    return type != nullptr;
}

std::vector<Finding> checkDocument(const Document& document)
{
    Findings findings;
    checkReading(document, findings);
    for (const SmartRef<Resource>& resource : document.getResourceManager()->getResourcesExcludingFolders())
        checkResource(*resource, findings);
    checkComposition(*document.getCompositionManager()->getRoot(), ShaderReview(document), findings);
    return findings;
}

} // namespace helvantine::tool
