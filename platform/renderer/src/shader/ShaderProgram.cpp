// SPDX-License-Identifier: MIT
#include "shader/ShaderProgram.h"

#include <algorithm>

namespace helvantine
{

const ShaderBinding* ShaderProgram::findBinding(uint32_t binding) const
{
    auto found = std::find_if(bindings.begin(), bindings.end(),
                              [binding](const auto& one) { return one.binding == binding; });
    return found == bindings.end() ? nullptr : &*found;
}

const ShaderVertexInput* ShaderProgram::findVertexInput(const std::string& semantic, uint32_t index) const
{
    auto found = std::find_if(vertexInputs.begin(), vertexInputs.end(), [&](const auto& one) {
        return one.index == index && one.semantic == semantic;
    });
    return found == vertexInputs.end() ? nullptr : &*found;
}

std::string ShaderProgram::describeWarnings(const std::string& name) const
{
    std::string lines;
    for (const ShaderWarning& one : warnings)
        lines += (one.file.empty() ? name : one.file) + ":" + std::to_string(one.line) +
                 ": warning: " + one.text + "\n";
    return lines;
}

} // namespace helvantine
