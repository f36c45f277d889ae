// SPDX-License-Identifier: MIT
#include "ShaderLog.h"

#include "ObjectPath.h"

#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/schematics/ShaderNode.h>
#include <helvantine/timeline/Composition.h>

#include <sstream>

namespace helvantine::tool
{

namespace
{

/// The compiler calls a node's text "shader"; lines of what it includes keep the names of their files.
void addLines(const std::string& path, const std::string& words, std::vector<std::string>& lines)
{
    constexpr std::string_view ownName = "shader:";
    std::istringstream stream(words);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line.starts_with(ownName) ? path + line.substr(ownName.size() - 1)
                                                  : path + ": " + line);
}

} // namespace

ShaderLog::ShaderLog(const Document& document) : m_review(document)
{
    addNodes(*document.getCompositionManager()->getRoot());
}

ShaderLog::~ShaderLog() = default;

void ShaderLog::addNodes(const Composition& composition)
{
    for (const SmartRef<SchematicsNode>& node : composition.m_schematics->m_nodes) {
        if (node && node->isOfType(&ShaderNode::m_typeInfo))
            m_entries.push_back({static_cast<ShaderNode*>(node.get()),
                                 getPath(composition, *node) + "/Shader Code", std::string(), nullptr});
    }
    for (const SmartRef<Composition>& child : composition.m_compositions)
        addNodes(*child);
}

std::vector<std::string> ShaderLog::takeNews()
{
    std::vector<std::string> lines;
    for (Entry& entry : m_entries) {
        Shader* shader = entry.node->getResource()->getShader();
        std::string words = entry.node->getTextLog();
        if (shader == entry.shader.get() && words == entry.words)
            continue;
        addLines(entry.path, words + m_review.getWarnings(*entry.node), lines);
        entry.words = std::move(words);
        entry.shader = shader;
    }
    return lines;
}

} // namespace helvantine::tool
