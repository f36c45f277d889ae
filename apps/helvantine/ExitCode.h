// SPDX-License-Identifier: MIT
#pragma once

namespace helvantine::tool
{

enum ExitCode : int
{
    ExitDone = 0,
    ExitFailed = 1, ///< the work couldn't be done; the reason is on standard error
    ExitUsage = 2,  ///< the arguments make no sense

    ExitFindings = 1,  ///< of a check: something is wrong with the document
    ExitUnchecked = 2, ///< of a check: it couldn't be judged; the reason is on standard error
};

} // namespace helvantine::tool
