// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace CLI
{
class App;
}

namespace helvantine::tool
{

struct CheckOptions
{
    std::string document;
    bool json = false;
};

/// Adds the subcommand "check", which fills the options.
void addCheckCommand(CLI::App& app, CheckOptions& options);

/// Returns an ExitCode.
int runCheck(const CheckOptions& options);

} // namespace helvantine::tool
