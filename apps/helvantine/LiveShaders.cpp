// SPDX-License-Identifier: MIT
#include "LiveShaders.h"

#include "LiveIncludes.h"

#include <helvantine/core/Path.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Composition.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace helvantine::tool
{

LiveShaders::LiveShaders(Document& document, const LiveIncludes& includes, Say say)
    : m_document(document), m_includes(includes), m_say(std::move(say))
{
}

LiveShaders::~LiveShaders() = default;

std::vector<SmartRef<ShaderNode>> LiveShaders::getNodes() const
{
    std::vector<SmartRef<ShaderNode>> nodes;
    for (const SmartRef<SchematicsNode>& node : m_document.getCompositionManager()->getRoot()->getAllNodes())
    {
        if (node->isOfType(&ShaderNode::m_typeInfo))
            nodes.emplace_back(static_cast<ShaderNode*>(node.get()));
    }
    return nodes;
}

bool LiveShaders::hasNode(const std::string& name) const
{
    return std::ranges::any_of(getNodes(), [&](const auto& node) { return node->m_name == name; });
}

void LiveShaders::offer(const std::string& name, const std::string& path, const std::string& text)
{
    // A node takes it as a C string, and an empty one for none.
    if (text.empty() || text.find('\0') != std::string::npos)
        return m_say(path + ": " + (text.empty() ? "is empty" : "is no text"));
    for (const SmartRef<ShaderNode>& node : getNodes()) {
        if (node->m_name != name)
            continue;
        std::erase_if(m_sources, [&](const Source& source) { return source.node == node; });
        m_sources.push_back({node, path, text});
        enqueue(m_sources.back());
    }
}

std::set<std::string> LiveShaders::offerIncluding(const std::set<std::string>& names)
{
    std::set<std::string> used;
    for (const SmartRef<ShaderNode>& node : getNodes()) {
        const Source source = getSource(*node);
        bool affected = false;
        for (const std::string& path : findShaderIncludes(node->makeParams(source.text.c_str()))) {
            const std::string name = getFilename(path.c_str());
            if (!names.contains(name))
                continue;
            used.insert(name);
            affected = true;
        }
        if (affected)
            enqueue(source);
    }
    return used;
}

LiveShaders::Source LiveShaders::getSource(ShaderNode& node) const
{
    const auto offered =
        std::ranges::find_if(m_sources, [&](const Source& source) { return source.node.get() == &node; });
    return offered != m_sources.end() ? *offered
                                      : Source{&node, "shader node \"" + node.m_name + "\"", node.getText()};
}

void LiveShaders::enqueue(const Source& source)
{
    std::erase_if(m_candidates, [&](const Candidate& candidate) {
        return candidate.source.node == source.node && !candidate.compilation;
    });
    for (Candidate& candidate : m_candidates)
        candidate.outdated |= candidate.source.node == source.node;
    m_candidates.push_back({source, nullptr});
}

bool LiveShaders::update()
{
    bool changed = false;
    while (!m_candidates.empty()) {
        Candidate& candidate = m_candidates.front();
        const Source& source = candidate.source;
        if (!candidate.compilation)
            candidate.compilation = beginShaderCompilation(source.node->makeParams(source.text.c_str()));
        if (!candidate.compilation->isDone())
            break;
        changed |= !candidate.outdated && finish(candidate);
        m_candidates.pop_front();
    }
    return changed;
}

bool LiveShaders::finish(const Candidate& candidate)
{
    const auto& [node, path, text] = candidate.source;
    std::string errors = candidate.compilation->getErrorText();
    if (!errors.empty()) {
        sayErrors(path, errors);
        return false;
    }
    if (node->getText() == text)
        node->recompile();
    else
        node->setText(text.c_str());
    errors = node->getTextLog();
    if (errors.empty())
        m_say(path + ": taken over");
    else
        sayErrors(path, errors);
    return true;
}

/// The compiler calls the text "shader", and what it includes as the text does; who reads it knows the files.
void LiveShaders::sayErrors(const std::string& path, const std::string& errors)
{
    std::istringstream lines(errors);
    for (std::string line; std::getline(lines, line);) {
        const std::string name = line.substr(0, line.find(':'));
        const std::string file = name == "shader" ? path : m_includes.locate(name);
        if (!file.empty())
            line.replace(0, name.size(), file);
        m_say(line);
    }
}

} // namespace helvantine::tool
