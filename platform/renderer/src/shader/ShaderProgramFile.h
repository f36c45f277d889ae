// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"

#include <string>

/// A compiled program as a file: magic, version, length and checksum, then the program and its key.
/// Little-endian, no alignment.

namespace helvantine
{

std::string encodeShaderProgram(const Hash128& key, const ShaderProgram& program);

/// Null if the bytes are damaged, cut short, of another version, belong to another key, or hold SPIR-V that
/// isn't valid.
ShaderProgramPtr decodeShaderProgram(const Hash128& key, const std::string& bytes);

/// Where the program of a key lies.
std::string shaderProgramPath(const std::string& folder, const Hash128& key);

/// Null if there is no such file or it can't be used.
ShaderProgramPtr readShaderProgram(const std::string& folder, const Hash128& key);

/// Makes the folder if need be, writes beside the place and moves the file there at once.
bool writeShaderProgram(const std::string& folder, const Hash128& key, const ShaderProgram& program);

} // namespace helvantine
