// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvModule.h"

#include <cstdint>
#include <set>
#include <string>

/// Where the members of constant buffers lie.

namespace helvantine
{

/// Bytes from the start of a block to the end of its last member. An array or matrix ends with its last
/// number, not with the register that holds it.
uint32_t blockSize(const SpirvModule& module, const SpirvInstruction& structType);

/// Moves the members of constant buffers to Direct3D's places: a member may use what is left of the register
/// in which an array, a matrix or a structure ends, where the compiler starts a new one. Buffers in
/// `placedByAuthor`, whose members bear packoffset, keep theirs.
void packConstantBuffers(SpirvModule& module, const std::set<std::string>& placedByAuthor);

} // namespace helvantine
