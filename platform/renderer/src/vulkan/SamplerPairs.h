// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"

#include <array>

namespace helvantine
{

/// Which textures a program reads through which sampler: for each s register a bit for each t register.
///
/// A sampler must not filter an image that the device can't filter, so the choice needs the pairs.
using SamplerPairs = std::array<uint16_t, samplerRegisterCount>;

SamplerPairs findSamplerPairs(const ShaderProgram& program);

} // namespace helvantine
