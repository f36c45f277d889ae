// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Reach.h"

#include <string>

namespace helvantine::hlsl
{

/// Writes out what an entry point uses as a text in which nothing is left to judge, with marks of the author's lines.
/// False if it would be longer than `limit` bytes.
bool write(const Program& program, const Reach& reach, size_t limit, std::string& text);

} // namespace helvantine::hlsl
