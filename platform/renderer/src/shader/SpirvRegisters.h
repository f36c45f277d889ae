// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvModule.h"

#include <cstdint>

namespace helvantine
{

/// Registers of four components that Direct3D gives a stage for its arrays, an element taking one whatever its type, a
/// matrix one for each row. Drivers take minutes over more.
constexpr uint64_t arrayRegisterLimit = 4096;

/// What the arrays of a stage take, constant tables included. Those that are copied whole count once with their copies.
struct ArrayRegisters
{
    uint64_t all = 0;
    uint64_t largest = 0;     ///< of one array, or of one structure that holds some
    uint64_t largestSize = 0; ///< elements of that array, or of the largest in that structure
};

ArrayRegisters countArrayRegisters(const SpirvModule& module);

} // namespace helvantine
