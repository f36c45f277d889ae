// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"

#include <cstdint>
#include <string>

/// Compiled programs as files of a folder that several processes may share.

namespace helvantine
{

/// Where the program of a key lies.
std::string shaderProgramPath(const std::string& folder, const Hash128& key);

/// Null if there is no such file or it can't be used; one that is too large to be a program isn't read.
ShaderProgramPtr readShaderProgram(const std::string& folder, const Hash128& key);

/// Makes the folder if need be, writes beside the place and moves the file there at once.
bool writeShaderProgram(const std::string& folder, const Hash128& key, const ShaderProgram& program);

constexpr uint64_t maxShaderFolderSize = uint64_t(256) << 20; ///< bytes of all programs together

/// Deletes what writers that ended midway left behind, new files that nobody has touched for an hour, and the
/// oldest half of the programs if all together have more bytes than that.
void tidyShaderFolder(const std::string& folder, uint64_t largestSize = maxShaderFolderSize);

/// Is there any program in the folder?
bool hasShaderPrograms(const std::string& folder);

} // namespace helvantine
