// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace CLI
{
class App;
}

namespace helvantine::tool
{

struct InfoOptions
{
    std::string document;
    bool json = false;
};

/// Adds the subcommand "info", which fills the options.
void addInfoCommand(CLI::App& app, InfoOptions& options);

/// Returns an ExitCode.
int runInfo(const InfoOptions& options);

} // namespace helvantine::tool
