// SPDX-License-Identifier: MIT
#pragma once

#include "shader/SpirvModule.h"

#include <cstdint>
#include <set>

namespace helvantine
{

/// The variables that separateSamplers adds to each stage.
struct SeparatedSamplers
{
    std::set<uint32_t> vertex;
    std::set<uint32_t> pixel;
};

/// Where several textures are read through one sampler, by both stages together, each gets a sampler of its own: which
/// filter a device can apply is up to the texture, and known when that is bound. Their bindings are those of
/// samplerPairBinding. What would give a stage more samplers than devices must offer stays shared.
SeparatedSamplers separateSamplers(SpirvModule& vertex, SpirvModule& pixel);

/// The variable that an image or sampler was loaded from, given what loaded it; 0 if that can't be told.
uint32_t findLoadedVariable(const SpirvModule& module, const SpirvInstruction* source);

/// The t registers, as bits, that a stage reads through the variable; all if that can't be told.
uint16_t findTexturesOf(const SpirvModule& module, uint32_t sampler);

} // namespace helvantine
