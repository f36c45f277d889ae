// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace helvantine
{

/// Fetches the text of an included file; false if there is none.
///
/// The path is the author's, resolved against the folder of the including file: `/` between parts, no
/// leading one, no `.` and no `..`, so it can't leave the folder that the callback reads from.
using ShaderIncluder = std::function<bool(const std::string& path, std::string& text)>;

using ShaderMacros = std::vector<std::pair<std::string, std::string>>;

/// What a program is compiled from: HLSL of shader model 5, one text and entry point for each stage.
struct ShaderRequest
{
    std::string name =
        "shader"; ///< stands before the line in messages; not part of what makes programs equal
    std::string vertexSource;
    std::string vertexEntry;
    std::string pixelSource;
    std::string pixelEntry;
    ShaderMacros macros;     ///< name and value, defined in this order
    ShaderIncluder includer; ///< null: a text with an include is refused with words
};

} // namespace helvantine
