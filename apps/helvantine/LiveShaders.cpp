// SPDX-License-Identifier: MIT
#include "LiveShaders.h"

#include "LiveIncludes.h"
#include "Rehearsal.h"

#include <helvantine/core/Path.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Composition.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <utility>

namespace helvantine::tool
{

std::vector<SmartRef<ShaderNode>> getShaderNodes(const Document& document)
{
    std::vector<SmartRef<ShaderNode>> nodes;
    for (const SmartRef<SchematicsNode>& node : document.getCompositionManager()->getRoot()->getAllNodes()) {
        if (node->isOfType(&ShaderNode::m_typeInfo))
            nodes.emplace_back(static_cast<ShaderNode*>(node.get()));
    }
    return nodes;
}

LiveShaders::LiveShaders(Document& document, const LiveIncludes& includes, Say say, Rehearsal* rehearsal)
    : m_document(document), m_includes(includes), m_say(std::move(say)), m_rehearsal(rehearsal),
      m_review(document)
{
}

LiveShaders::~LiveShaders() = default;

bool LiveShaders::hasNode(const std::string& name) const
{
    return std::ranges::any_of(getShaderNodes(m_document),
                               [&](const auto& node) { return node->m_name == name; });
}

void LiveShaders::offer(const std::string& name, const std::string& path, const std::string& text)
{
    // A node takes it as a C string, and an empty one for none.
    if (text.empty() || text.find('\0') != std::string::npos)
        return m_say(path + ": " + (text.empty() ? "is empty" : "is no text"));
    for (const SmartRef<ShaderNode>& node : getShaderNodes(m_document)) {
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
    for (const SmartRef<ShaderNode>& node : getShaderNodes(m_document)) {
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
    const auto isOfNode = [&](const Candidate& candidate) { return candidate.source.node == source.node; };
    std::erase_if(m_candidates,
                  [&](const Candidate& candidate) { return isOfNode(candidate) && !candidate.compilation; });
    std::erase_if(m_compiled, isOfNode);
    for (std::deque<Candidate>* queue : {&m_candidates, &m_staged})
        for (Candidate& candidate : *queue)
            candidate.outdated |= isOfNode(candidate);
    m_candidates.push_back({source, nullptr});
    if (m_rehearsal)
        m_rehearsal->prepare();
    if (m_rehearsal && !m_staged.empty() && std::ranges::all_of(m_staged, &Candidate::outdated)) {
        m_rehearsal->stop();
        m_staged.clear();
    }
}

bool LiveShaders::update(int frame)
{
    compile();
    if (m_rehearsal)
        return rehearse(frame);
    m_staged.swap(m_compiled);
    return finishStaged();
}

void LiveShaders::compile()
{
    while (!m_candidates.empty()) {
        Candidate& candidate = m_candidates.front();
        const Source& source = candidate.source;
        if (!candidate.compilation)
            candidate.compilation = beginShaderCompilation(source.node->makeParams(source.text.c_str()));
        if (!candidate.compilation->isDone())
            break;
        const std::string& errors = candidate.compilation->getErrorText();
        if (!candidate.outdated && !errors.empty())
            sayLines(source.path, errors);
        else if (!candidate.outdated)
            m_compiled.push_back(std::move(candidate));
        m_candidates.pop_front();
    }
}

/// All that have compiled are drawn with at once.
bool LiveShaders::rehearse(int frame)
{
    bool changed = false;
    switch (m_rehearsal->look()) {
    case Rehearsal::State::Running:
        return false;
    case Rehearsal::State::Drawn:
        changed = finishStaged();
        break;
    case Rehearsal::State::Failed:
        refuseStaged();
        break;
    case Rehearsal::State::Impossible:
        m_say("shaders are drawn with at once, as they can't be elsewhere first: " +
              m_rehearsal->getReason());
        m_rehearsal = nullptr;
        return finishStaged();
    case Rehearsal::State::Idle:
        break;
    }
    if (m_candidates.empty() && !m_compiled.empty())
        stage(frame);
    return changed;
}

void LiveShaders::stage(int frame)
{
    const size_t count = m_oneByOne > 0 ? 1 : m_compiled.size();
    m_oneByOne -= std::min<size_t>(m_oneByOne, 1);
    std::move(m_compiled.begin(), m_compiled.begin() + static_cast<std::ptrdiff_t>(count),
              std::back_inserter(m_staged));
    m_compiled.erase(m_compiled.begin(), m_compiled.begin() + static_cast<std::ptrdiff_t>(count));
    Scene scene{.frame = frame, .texts = {}};
    for (const Source& source : m_sources)
        scene.texts.push_back({source.node->m_id, source.node->getText()});
    for (const Candidate& candidate : m_staged)
        scene.texts.push_back({candidate.source.node->m_id, candidate.source.text});
    m_rehearsal->begin(scene);
}

bool LiveShaders::finishStaged()
{
    bool changed = false;
    for (const Candidate& candidate : m_staged)
        changed |= !candidate.outdated && finish(candidate);
    m_staged.clear();
    return changed;
}

/// One of several may be to blame: each is tried alone then.
void LiveShaders::refuseStaged()
{
    std::erase_if(m_staged, &Candidate::outdated);
    if (m_staged.size() == 1)
        m_say(m_staged.front().source.path + ": not taken over: drawing with it " + m_rehearsal->getReason());
    if (m_staged.size() > 1) {
        m_oneByOne = m_staged.size();
        std::move(m_staged.rbegin(), m_staged.rend(), std::front_inserter(m_compiled));
    }
    m_staged.clear();
}

bool LiveShaders::finish(const Candidate& candidate)
{
    const auto& [node, path, text] = candidate.source;
    if (node->getText() == text)
        node->recompile();
    else
        node->setText(text.c_str());
    const std::string errors = node->getTextLog();
    if (errors.empty())
        m_say(path + ": taken over");
    sayLines(path, errors + m_review.getWarnings(*node));
    return true;
}

/// The compiler calls the text "shader", and what it includes as the text does; who reads it knows the files.
void LiveShaders::sayLines(const std::string& path, const std::string& words)
{
    std::istringstream lines(words);
    for (std::string line; std::getline(lines, line);) {
        const std::string name = line.substr(0, line.find(':'));
        const std::string file = name == "shader" ? path : m_includes.locate(name);
        if (!file.empty())
            line.replace(0, name.size(), file);
        m_say(line);
    }
}

} // namespace helvantine::tool
