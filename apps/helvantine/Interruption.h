// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine::tool
{

/// From now on an interruption from outside is only noted, so that the work ends between two frames and
/// everything temporary goes; a second one ends the process at once.
void watchInterruption();

bool isInterrupted();

} // namespace helvantine::tool
