// SPDX-License-Identifier: MIT
#include "LiveShaders.h"

#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Composition.h>

#include <sstream>
#include <utility>

namespace helvantine::tool
{

LiveShaders::LiveShaders(Document& document, Say say) : m_document(document), m_say(std::move(say)) {}

LiveShaders::~LiveShaders() = default;

void LiveShaders::offer(const std::string& name, const std::string& path, const std::string& text)
{
    // A node takes it as a C string, and an empty one for none.
    if (text.empty() || text.find('\0') != std::string::npos)
        return m_say(path + ": " + (text.empty() ? "is empty" : "is no text"));
    bool found = false;
    for (const SmartRef<SchematicsNode>& node : m_document.getCompositionManager()->getRoot()->getAllNodes())
    {
        if (node->m_name != name || !node->isOfType(&ShaderNode::m_typeInfo))
            continue;
        enqueue(static_cast<ShaderNode&>(*node), path, text);
        found = true;
    }
    if (!found)
        m_say(path + ": there is no shader node \"" + name + "\"");
}

void LiveShaders::enqueue(ShaderNode& node, const std::string& path, const std::string& text)
{
    std::erase_if(m_candidates, [&](const Candidate& candidate) {
        return candidate.node.get() == &node && !candidate.compilation;
    });
    for (Candidate& candidate : m_candidates)
        candidate.outdated |= candidate.node.get() == &node;
    m_candidates.push_back({&node, path, text});
}

bool LiveShaders::update()
{
    bool changed = false;
    while (!m_candidates.empty()) {
        Candidate& candidate = m_candidates.front();
        if (!candidate.compilation)
            candidate.compilation =
                beginShaderCompilation(candidate.node->makeParams(candidate.text.c_str()));
        if (!candidate.compilation->isDone())
            break;
        changed |= !candidate.outdated && finish(candidate);
        m_candidates.pop_front();
    }
    return changed;
}

bool LiveShaders::finish(Candidate& candidate)
{
    std::string errors = candidate.compilation->getErrorText();
    if (!errors.empty()) {
        sayErrors(candidate.path, errors);
        return false;
    }
    candidate.node->setText(candidate.text.c_str());
    errors = candidate.node->getTextLog();
    if (errors.empty())
        m_say(candidate.path + ": taken over");
    else
        sayErrors(candidate.path, errors);
    return true;
}

/// The compiler calls the text "shader"; who reads it knows the file.
void LiveShaders::sayErrors(const std::string& path, const std::string& errors)
{
    constexpr std::string_view compilersName = "shader:";
    std::istringstream lines(errors);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(compilersName))
            line.replace(0, compilersName.size() - 1, path);
        m_say(line);
    }
}

} // namespace helvantine::tool
