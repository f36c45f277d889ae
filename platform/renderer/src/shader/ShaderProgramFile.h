// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"

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

/// Deletes what writers that ended midway left behind: new files that nobody has touched for an hour.
void removeUnfinishedFiles(const std::string& folder);

/// Is there any program in the folder?
bool hasShaderPrograms(const std::string& folder);

} // namespace helvantine
