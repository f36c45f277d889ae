// SPDX-License-Identifier: MIT
#pragma once

#include "shader/HlslCompiler.h"
#include "shader/ShaderRequest.h"

#include <cstddef>
#include <set>
#include <string>

/// A shader's text with all that it includes, and the limits that it must keep.
///
/// The limits stand far above what people write, and below what is known to crash or stall the compiler.
/// Macros are looked at before they are expanded: their expanded size is bounded from above, brackets that
/// only macros bring together aren't. Loops that unroll to millions of rounds aren't found here.

namespace helvantine
{

constexpr size_t maxShaderSourceSize = 1 << 20; ///< bytes of one text
constexpr size_t maxIncludedSize = 4 << 20;     ///< bytes of all included texts together
constexpr size_t maxIncludeCount = 256;         ///< files, and inclusions in one compile
constexpr size_t maxIncludeDepth = 32;
constexpr size_t maxShaderMacroCount = 4096;        ///< definitions in all texts together
constexpr size_t maxShaderMacroValueSize = 1 << 16; ///< bytes of a value given from outside
constexpr size_t maxExpandedTokens = 1 << 19;       ///< once macros are expanded
constexpr size_t maxBracketDepth = 256;             ///< parentheses, brackets and braces together
constexpr size_t maxOperatorRun = 1024;             ///< operators of one expression or list element
constexpr size_t maxElseCount = 1024;               ///< in one text

struct ShaderSource
{
    std::string text; ///< without a byte-order mark
    ShaderIncludes includes;
    bool allowsIncludes = false;
};

/// Fetches what the text includes, directly or not, whatever conditions stand around it, and checks the
/// limits. A file that can't be fetched is left for the compiler to miss. False with `name:line: error: …`
/// in `errors` if a limit is passed.
bool loadShaderSource(const std::string& name, const std::string& text, const ShaderMacros& macros,
                      const ShaderIncluder& includer, ShaderSource& source, std::string& errors);

/// Names of the constant buffers whose members bear packoffset, in the text and its includes.
std::set<std::string> findPlacedBuffers(const ShaderSource& source);

/// The path that an include means: relative to the folder of the including file, no part of it leading up.
std::string resolveInclude(const std::string& includingPath, const std::string& requested);

} // namespace helvantine
