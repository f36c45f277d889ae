// SPDX-License-Identifier: MIT
#include "InfoCommand.h"

#include "DocumentCheck.h"
#include "DocumentInfo.h"
#include "DocumentReader.h"
#include "Json.h"
#include "Warnings.h"

#include <helvantine/host/Document.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>

namespace helvantine::tool
{

namespace
{

std::string textOf(const Json& value)
{
    return printable(value.is_string() ? value.get<std::string>()
                                       : value.dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::string textOf(const Json& object, const char* key)
{
    return textOf(object.at(key));
}

/// Lines below each other, each as deep as what it belongs to.
class Outline
{
public:
    void line(const std::string& text) { std::printf("%*s%s\n", m_depth * 2, "", text.c_str()); }

    template <class Body>
    void below(Body&& body)
    {
        ++m_depth;
        body();
        --m_depth;
    }

private:
    int m_depth = 0;
};

void printResources(Outline& outline, const Json& resources)
{
    for (const Json& resource : resources) {
        std::string text = textOf(resource, "name");
        if (resource.at("folder")) {
            text += "/";
        } else {
            text += "  (" + textOf(resource, "class") + ", by " + textOf(resource, "importer") + ")";
            for (const Json& file : resource.at("files"))
                text += "  file \"" + textOf(file) + '"';
        }
        outline.line(text + "  " + textOf(resource, "id"));
        outline.below([&] { printResources(outline, resource.at("children")); });
    }
}

/// Of a text of several lines the first; --json has them all.
std::string valueOf(const Json& property)
{
    const Json& value = property.at(property.contains("label") ? "label" : "value");
    const std::string text = value.is_string() ? value.get<std::string>() : std::string();
    const std::size_t end = text.find('\n');
    if (end == std::string::npos)
        return textOf(value);
    const auto lines = std::count(text.begin(), text.end(), '\n') + (text.ends_with('\n') ? 0 : 1);
    return printable(text.substr(0, end)) + " … (" + std::to_string(lines) + " lines)";
}

void printProperties(Outline& outline, const Json& properties)
{
    for (const Json& property : properties) {
        std::string text = textOf(property, "group") + "." + textOf(property, "name") + " = " +
                           valueOf(property) + "  (" + textOf(property, "kind") + ")";
        if (property.contains("keys")) {
            const Json& keys = property.at("keys");
            text += "  " + textOf(keys, "count") + " keys, " + textOf(keys, "first") + " s to " +
                    textOf(keys, "last") + " s";
        }
        outline.line(text);
    }
}

void printEffects(Outline& outline, const Json& effects)
{
    for (const Json& effect : effects) {
        std::string text = "[" + textOf(effect, "start") + ", " + textOf(effect, "end") + ")  " +
                           textOf(effect, "class") + " \"" + textOf(effect, "name") + '"';
        if (!effect.at("enabled"))
            text += "  disabled";
        outline.line(text);
        outline.below([&] {
            printProperties(outline, effect.at("properties"));
            printEffects(outline, effect.at("effects"));
        });
    }
}

void printGraph(Outline& outline, const Json& composition)
{
    for (const Json& node : composition.at("nodes")) {
        outline.line("node " + textOf(node, "class") + " \"" + textOf(node, "path") + '"');
        outline.below([&] { printProperties(outline, node.at("properties")); });
    }
    for (const Json& link : composition.at("links"))
        outline.line("link " + textOf(link, "from") + "  ->  " + textOf(link, "to"));
}

void printComposition(Outline& outline, const Json& composition)
{
    outline.line(textOf(composition, "name") + (composition.at("folder") ? "/" : "") + "  frames " +
                 textOf(composition, "startFrame") + " to " + textOf(composition, "endFrame") + "  " +
                 textOf(composition, "id"));
    outline.below([&] {
        printEffects(outline, composition.at("effects"));
        printGraph(outline, composition);
        for (const Json& child : composition.at("compositions"))
            printComposition(outline, child);
    });
}

void printText(const Json& info)
{
    Outline outline;
    const Json& settings = info.at("settings");
    outline.line(textOf(settings, "title"));
    outline.line(textOf(settings, "width") + " x " + textOf(settings, "height") + ", " +
                 textOf(settings, "frameRate") + " frames per second, format version " +
                 textOf(info, "version"));
    outline.line("\nResources");
    outline.below([&] { printResources(outline, info.at("resources")); });
    outline.line("\nCompositions");
    outline.below([&] {
        // The root is there for its children, unless somebody has put effects into it.
        const Json& root = info.at("root");
        if (!root.at("effects").empty())
            return printComposition(outline, root);
        for (const Json& composition : root.at("compositions"))
            printComposition(outline, composition);
    });
}

constexpr const char* footer =
    R"(An outline of settings, resources, compositions, effects, nodes and links, with all values. Examples:
  helvantine info intro.hfx
  helvantine info intro.hfx --json | jq '.root.compositions[].name'

Exit codes: 0 done, also where a part can't be read, which is a warning then; 1 failed, 2 wrong arguments.
)";

/// What is told then is what could be read.
void warnOfDamage(const std::string& path, const Document& document)
{
    std::vector<Finding> findings;
    checkReading(document, findings);
    for (const Finding& finding : findings)
        std::fprintf(stderr, "helvantine: warning: %s: %s%s%s\n", path.c_str(),
                     printable(finding.path).c_str(), finding.path.empty() ? "" : ": ",
                     printable(finding.found).c_str());
}

} // namespace

void addInfoCommand(CLI::App& app, InfoOptions& options)
{
    CLI::App* info = app.add_subcommand("info", "Tells what a document holds. Needs no GPU.");
    info->footer(footer);
    info->add_option("document", options.document, "The document")->required()->type_name("DOCUMENT");
    info->add_flag("--json", options.json, "As JSON; docs/inspecting.md tells its keys");
}

int runInfo(const InfoOptions& options)
{
    DocumentReader reader;
    Warnings(options.document).show(nullptr); // of the plugin libraries
    std::string error = reader.read(options.document);
    if (error.empty() && !reader.document().getZipVfs())
        error = options.document + ": no Helvantine document";
    if (!error.empty())
        return fail(ExitFailed, error);
    warnOfDamage(options.document, reader.document());
    const Json info = describeDocument(options.document, reader.document());
    if (options.json)
        std::puts(toText(info).c_str());
    else
        printText(info);
    return ExitDone;
}

} // namespace helvantine::tool
