// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace helvantine
{

/// The vertex stage with a point size of 1, which Vulkan asks for and Direct3D's programs don't have. The
/// words themselves if they already write one or can't be read.
std::vector<uint32_t> addPointSize(const std::vector<uint32_t>& vertexWords);

} // namespace helvantine
