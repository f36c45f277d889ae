// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvModule.h"

namespace helvantine
{

/// Replaces instructions that give other numbers than Direct3D's, or leave open what it defines:
///
/// - the smaller, the larger and the clamped of a number and NaN is the number; step is 0 for NaN
/// - pow is exp2(y · log2(x)), so that it is NaN for negative x and infinite for 0 to a negative power
/// - remainders, of floats and integers, have the sign of the dividend
/// - floats become integers by cutting off, saturated, NaN as 0
/// - the count of a shift is taken modulo 32
void repairNumbers(SpirvModule& module);

} // namespace helvantine
