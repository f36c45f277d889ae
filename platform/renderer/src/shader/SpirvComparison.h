// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "shader/SpirvModule.h"

#include <array>
#include <cstdint>
#include <vector>

namespace helvantine
{

/// Makes gathers of comparisons, which the compiler doesn't know: the front writes them as
/// `t.SampleCmpLevelZero(s, place, asfloat(reversebits(reversebits(asuint(value))))[, offset]).xxxx`.
void makeComparedGathers(SpirvModule& module);

/// Textures whose red a program compares by itself, since the device compares depth formats alone.
struct ColorComparison
{
    uint16_t textures = 0;                                 ///< t registers, as bits
    std::array<uint8_t, samplerRegisterCount> functions{}; ///< D3D11_COMPARISON_FUNC of s registers
};

/// The stage with these comparisons in its code: of the texel that a sampler which doesn't compare reads.
std::vector<uint32_t> compareColors(const std::vector<uint32_t>& words, const ColorComparison& comparison);

} // namespace helvantine
