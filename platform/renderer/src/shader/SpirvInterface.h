// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "shader/SpirvModule.h"

#include <set>
#include <string>
#include <vector>

/// What one compiled stage takes and gives, read from its module while it still bears its semantics.

namespace helvantine
{

/// An input or output that isn't a system value.
struct StageVariable
{
    uint32_t id = 0;
    std::string semantic; ///< without its index
    uint32_t index = 0;   ///< of the first row
    uint32_t location = 0;
    uint32_t rows = 1; ///< of a matrix; 1 for a scalar or vector
    ShaderComponentType component = ShaderComponentType::Float;
    uint32_t componentCount = 0;

    /// "TEXCOORD3", as messages show it.
    std::string describe() const { return semantic + std::to_string(index); }
};

/// Variables of storage class Input or Output, by location. What can't cross between stages or to the
/// vertex buffers adds a line to `errors`.
std::vector<StageVariable> readStageVariables(const SpirvModule& module, spv::StorageClass storage,
                                              std::string& errors);

struct NamedBinding
{
    ShaderBinding binding;
    std::string name; ///< as in the text
};

/// Resources of a stage. What the slots can't hold (a high register, a loose global, an array of textures,
/// unordered access) adds a line to `errors`, each without name and position.
std::vector<NamedBinding> readBindings(const SpirvModule& module, ShaderStage stage,
                                       const std::set<uint32_t>& separatedSamplers, std::string& errors);

/// Does the stage write SV_Depth?
bool writesDepth(const SpirvModule& module);

} // namespace helvantine
