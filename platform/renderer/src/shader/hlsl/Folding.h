// SPDX-License-Identifier: MIT
#pragma once

#include "shader/hlsl/Ast.h"

#include <string_view>
#include <vector>

/// What is known while compiling is computed here, with the numbers that a GPU of Direct3D's would get: floats of
/// 32 bits, whole numbers that wrap around.

namespace helvantine::hlsl
{

struct Operand
{
    const Type* type;
    const Value* value;
};

/// False if the operation isn't known; it is then computed when the program runs. Operands have one shape, which is
/// the result's but for dot, any and all.
bool foldOperation(std::string_view operation, const Type& result, const std::vector<Operand>& operands,
                   Value& value);

/// The number in another base; floats that don't fit saturate, and what isn't a number becomes 0.
uint32_t convertBits(uint32_t bits, Base from, Base to);

/// How the normalised text spells a component.
std::string spellComponent(uint32_t bits, Base base);

} // namespace helvantine::hlsl
