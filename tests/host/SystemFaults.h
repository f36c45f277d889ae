// SPDX-License-Identifier: MIT
#pragma once

/// The calls by which this process changes files, its libraries' included: counted, and made to fail or to kill.
///
/// Opening, making, writing, emptying, flushing, closing, renaming and removing of files and folders count. The program's
/// own functions stand in front of the system's and hand on to them.
namespace helvantine::test
{

enum class Fault
{
    None,
    Kill,     ///< the process dies in place of the call
    KillHalf, ///< as Kill, but half the bytes of a write are written first
    Fail,     ///< the call fails with an error number
};

/// Starts to count at 0; the call of that number, from 0, meets the fault.
void beginFaults(Fault fault, int call, int error);

/// Ends that. Returns how many calls there were.
int endFaults();

/// What the system says from now on that disks have left, in bytes; the truth for 0.
void pretendRoom(unsigned long long bytes);

} // namespace helvantine::test
