// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <cstdint>

namespace helvantine
{

/// Evenly spread over [min, max). Comes from one generator, which starts from the operating system's
/// randomness. With max not above min the result is min.
HELVANTINE_CORE_API float randomFloat(float min, float max);

/// Starts the generator anew: equal seeds give equal numbers on every platform.
HELVANTINE_CORE_API void seedRandom(std::uint32_t seed);

} // namespace helvantine
