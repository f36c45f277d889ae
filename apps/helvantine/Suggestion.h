// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace helvantine::tool
{

/// The candidate that a misspelt word most probably means; empty if none is near.
std::string findNearest(const std::string& word, const std::vector<std::string>& candidates);

/// Which word of a command line that the parser refuses is no command or no option, and which one is meant; empty if
/// that isn't what is wrong. arguments: without the program's name.
std::string explainUnknownWord(const CLI::App& app, const std::vector<std::string>& arguments);

} // namespace helvantine::tool
