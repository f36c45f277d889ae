// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// malloc of the whole program, libraries included, counted and filled. For programs without sanitizers.

namespace helvantine::test
{

/// From now on this thread's new memory holds that byte.
void fillNewMemory(unsigned char byte);

/// What this thread's allocations come to.
void startWatching();
size_t getPeakBytes(); ///< the most that was held at once since then

} // namespace helvantine::test
