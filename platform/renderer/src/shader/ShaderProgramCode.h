// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"

#include <string>

/// A compiled program as bytes: magic, version, length and checksum, then the program and its key.

namespace helvantine
{

constexpr size_t maxEncodedProgramSize = 2 * maxModuleSize + (size_t(1) << 20); ///< with room for the lists

std::string encodeShaderProgram(const Hash128& key, const ShaderProgram& program);

/// Null if the bytes are damaged, cut short, of another version, belong to another key, or hold SPIR-V that
/// isn't valid.
ShaderProgramPtr decodeShaderProgram(const Hash128& key, const std::string& bytes);

} // namespace helvantine
