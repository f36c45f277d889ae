// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "shader/ShaderRequest.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace helvantine
{

/// Texts that includes resolve to, by path. Everything that a compile needs travels by value, so that it
/// can run in another process.
using ShaderIncludes = std::map<std::string, std::string>;

struct HlslStage
{
    ShaderStage stage = ShaderStage::Vertex;
    std::string name;   ///< of the text, in messages
    std::string source; ///< without a byte-order mark
    std::string entry;
    ShaderMacros macros;
    ShaderIncludes includes;
    bool allowsIncludes = false; ///< false: an include is an error that says so
};

/// HLSL to SPIR-V: one entry point in, a module out. Nothing else knows which compiler it is.
///
/// The compiler's own judgement isn't asked for: what it gets is the text that hlsl::normalise writes.
///
/// The output is raw: not validated, not linked to another stage, semantics kept as UserSemantic decorations,
/// resources bound by the formula in ShaderProgram.h. Bad text can crash or hang the front end; limits that
/// keep the known cases away stand before it.
class HlslCompiler
{
public:
    /// Makes the compiler, which is worth keeping: the first compile of a process costs the most.
    HlslCompiler();
    ~HlslCompiler();

    HlslCompiler(const HlslCompiler&) = delete;
    HlslCompiler& operator=(const HlslCompiler&) = delete;

    /// False on failure, with lines of the form `name:line: error: …`. Warnings alone are no failure and
    /// leave `errors` empty.
    bool compile(const HlslStage& stage, std::vector<uint32_t>& words, std::string& errors,
                 std::vector<ShaderWarning>& warnings);

    /// Changes whenever equal input may give other output.
    static std::string version();

private:
    bool preprocess(const HlslStage& stage, std::string& text, std::string& errors);

    struct Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace helvantine
