// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/MessageChannel.h>

#include <cstdint>

/// What the main function of a program calls that runs as a HelperProcess.

namespace helvantine
{

/// First of all: this process ends when the one does that started it, however that happens, and leaves no picture of
/// its memory when it crashes.
HELVANTINE_CORE_API void becomeHelper();

/// The way to the process that started this one, kept from code that uses the standard input: that is empty from now
/// on.
HELVANTINE_CORE_API MessageChannel takeHelperChannel();

/// Bytes of memory of its own that this process may write to from now on; more can't be allocated.
HELVANTINE_CORE_API void limitData(std::uint64_t bytes);

} // namespace helvantine
