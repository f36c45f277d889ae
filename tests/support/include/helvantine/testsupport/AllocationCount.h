// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace helvantine::test
{

/// Allocations with operator new that this thread has made so far, in this program and in our libraries. The
/// drivers work on threads of their own, or with malloc.
size_t countAllocations();

} // namespace helvantine::test
