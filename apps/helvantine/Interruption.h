// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine::tool
{

/// At the start of a program: from now on it takes its scratch folders along when a signal ends it, and writing to a
/// reader that is gone fails instead of ending it.
void prepareSignals();

/// From now on an interruption from outside is only noted, so that the work ends between two frames; a second one ends
/// the process at once.
void watchInterruption();

bool isInterrupted();

} // namespace helvantine::tool
