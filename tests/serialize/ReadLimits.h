// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/serialize/LoadProblem.h>

#include <string>
#include <vector>

namespace testplugin
{

/// What became of a script that was read into a new document.
struct ReadOutcome
{
    std::string failure; ///< empty if it was read to its end
    std::vector<helvantine::LoadProblem> problems;
};

/// Reads a script into a new document of the application's, within the limits that hold for every file that packs to
/// little: four times its size and 128 MiB of memory, one second of a processor.
ReadOutcome readWithinLimits(const std::string& script);

} // namespace testplugin
