// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace CLI
{
class App;
}

namespace helvantine::tool
{

struct PlayOptions
{
    std::string document;
    std::string composition;   ///< empty: the first
    std::string size;          ///< empty: the project's
    std::string watch;         ///< folder to follow; empty: none
    std::optional<int> frames; ///< how many to draw; none: until the user ends it
    bool fullscreen = false;
    bool loop = false;
    bool validation = false;
};

/// Adds the subcommand "play", which fills the options.
void addPlayCommand(CLI::App& app, PlayOptions& options);

/// Returns an ExitCode.
int runPlay(const PlayOptions& options);

} // namespace helvantine::tool
