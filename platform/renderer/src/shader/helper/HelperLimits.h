// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace helvantine
{

struct HelperLimits
{
    uint64_t memory = 0; ///< bytes of address space
    uint64_t stack = 0;  ///< bytes
};

/// Keeps this process to its job: it can't open files, ends when its parent does, and one that runs out of
/// memory or stack ends with the exit code that says so. A build with instrumentation keeps most of its freedom,
/// which sanitizers and coverage need.
///
/// `stackTop` is an address in the frame of `main`.
void limitProcess(const HelperLimits& limits, const void* stackTop);

/// Does this process hold so much memory that the next job might miss it?
bool hasGrown(const HelperLimits& limits);

} // namespace helvantine
