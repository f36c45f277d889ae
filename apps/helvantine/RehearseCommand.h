// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace CLI
{
class App;
}

namespace helvantine::tool
{

constexpr const char* rehearseCommandName = "rehearse";
constexpr std::size_t maxRehearsalReason = 4096;                 ///< bytes
constexpr std::size_t maxRehearsalScene = std::size_t(64) << 20; ///< bytes

/// What a Rehearsal starts: reads the document, waits for a scene on its standard input, a socket, draws it and ends with
/// 0. If it can't it sends the reason first. Not for users, whose help doesn't list it.
struct RehearseOptions
{
    std::string document;
    std::string composition;
    std::string folder;
    std::string size;
};

void addRehearseCommand(CLI::App& app, RehearseOptions& options);

/// Returns an ExitCode.
int runRehearse(const RehearseOptions& options);

} // namespace helvantine::tool
