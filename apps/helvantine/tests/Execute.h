// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine::test
{

/// Runs a command of the shell. Returns its exit code, -1 if it didn't end by itself; output becomes what it printed.
int execute(const std::string& command, std::string& output);
/// The same, but output becomes what it printed on standard error only.
int executeForErrors(const std::string& command, std::string& errors);

} // namespace helvantine::test
