// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"

#include <string>
#include <vector>

/// What stands before the HLSL compiler: reads a text as Direct3D's compiler would, and writes out one that leaves
/// nothing to judge.
///
/// Every conversion is explicit, overloads are chosen, operators on matrices and what the compiler behind does
/// otherwise than Direct3D are functions that come with the text, what is known while compiling is computed. Only what
/// the entry point uses is written; but all of the text is checked. What this system can't give is refused by name.
///
/// It trusts nothing: nesting and sizes are bounded, and time is linear in the text.

namespace helvantine::hlsl
{

constexpr size_t maxNormalisedSize = size_t(16) << 20; ///< bytes of what is written

struct Result
{
    std::string text;                    ///< empty on failure
    std::string errors;                  ///< `name:line: error: …` lines
    std::vector<ShaderWarning> warnings; ///< in the order of reading
    bool hasEntry = true;
};

/// The text is preprocessed; `name` is what its own lines are marked with.
Result normalise(std::string_view text, const std::string& name, const std::string& entry, ShaderStage stage);

} // namespace helvantine::hlsl
