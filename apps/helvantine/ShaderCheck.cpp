// SPDX-License-Identifier: MIT
// Shader texts of the graph.
#include "DocumentCheck.h"
#include "ShaderReview.h"

#include <helvantine/object/PropertyBase.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/schematics/ShaderNode.h>

#include <algorithm>

namespace helvantine::tool
{

namespace
{

/// The first of the compiler's lines, and how many there are behind it.
std::string summarize(const std::string& words)
{
    const std::string first = words.substr(0, words.find('\n'));
    const auto lines = std::count(words.begin(), words.end(), '\n') + (words.ends_with('\n') ? 0 : 1);
    return lines > 1
               ? first + " (and " + std::to_string(lines - 1) + (lines > 2 ? " more lines)" : " more line)")
               : first;
}

} // namespace

void checkShaderText(const SchematicsNode& node, const std::string& path, const ShaderReview& review,
                     std::vector<Finding>& findings)
{
    if (!node.isOfType(&ShaderNode::m_typeInfo))
        return;
    const auto& shaderNode = static_cast<const ShaderNode&>(node);
    const std::string place = path + "/Shader Code";
    const ShaderFromMemoryParams params = shaderNode.makeParams(shaderNode.getText().c_str());
    const std::string words = ShaderResource::check(params.vertexSource.c_str(), params.vertexEntry.c_str(),
                                                    params.pixelEntry.c_str());
    if (!words.empty())
        findings.push_back(
            {"shader-broken", place, summarize(words), "correct the text, or remove the node"});
    if (const std::string warnings = ShaderReview::getCompilerWarnings(shaderNode); !warnings.empty())
        findings.push_back({"shader-warning", place, summarize(warnings), "say in the text what you mean"});
    for (const ShaderReview::Remark& remark : review.review(shaderNode))
        findings.push_back({remark.code, place, "shader:" + std::to_string(remark.line) + ": " + remark.found,
                            remark.advice});
}

} // namespace helvantine::tool
