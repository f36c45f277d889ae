// SPDX-License-Identifier: MIT
#pragma once

#include "shader/HlslCompiler.h"
#include "shader/ShaderProgram.h"
#include "shader/ShaderRequest.h"
#include "shader/ShaderSource.h"
#include "shader/SpirvModule.h"

#include <string>
#include <vector>

namespace helvantine
{

/// Makes programs: compiles both stages, repairs and links them, reads their interface, validates them.
class ShaderBuilder
{
public:
    /// Null on failure, with lines of the form `name:line: error: …` in `errors`. The sources are those of the
    /// request, loaded; what the request itself says of sources and includes isn't looked at.
    ShaderProgramPtr build(const ShaderRequest& request, const ShaderSource& vertexSource,
                           const ShaderSource& pixelSource, std::string& errors);

    /// Changes whenever equal input may give another program.
    static std::string version();

private:
    bool compile(const ShaderRequest& request, ShaderStage stage, const ShaderSource& source,
                 SpirvModule& module, std::vector<ShaderWarning>& warnings, std::string& errors);

    HlslCompiler m_compiler;
};

} // namespace helvantine
