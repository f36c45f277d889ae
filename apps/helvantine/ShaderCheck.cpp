// SPDX-License-Identifier: MIT
// Shader texts of the graph.
#include "DocumentCheck.h"

#include <helvantine/object/PropertyBase.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/schematics/SchematicsNode.h>

#include <algorithm>

namespace helvantine::tool
{

namespace
{

std::string getInput(const SchematicsNode& node, const char* name)
{
    for (const SmartRef<PropertyGroup>& group : node.m_inputGroups) {
        if (const PropertyBase* property = group->findProperty(name))
            return property->toString();
    }
    return {};
}

/// The first of the compiler's lines, and how many there are behind it.
std::string summarize(const std::string& words)
{
    const std::string first = words.substr(0, words.find('\n'));
    const auto lines = std::count(words.begin(), words.end(), '\n') + (words.ends_with('\n') ? 0 : 1);
    return lines > 1 ? first + " (and " + std::to_string(lines - 1) + " more lines)" : first;
}

} // namespace

void checkShaderText(const SchematicsNode& node, const std::string& path, std::vector<Finding>& findings)
{
    if (!isOfClass(node, "ShaderNode"))
        return;
    const std::string words =
        ShaderResource::check(getInput(node, "Shader Code").c_str(), getInput(node, "VS EntryPoint").c_str(),
                              getInput(node, "PS EntryPoint").c_str());
    if (!words.empty())
        findings.push_back({"shader-broken", path + "/Shader Code", summarize(words),
                            "correct the text, or remove the node"});
}

} // namespace helvantine::tool
