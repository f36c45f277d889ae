// SPDX-License-Identifier: MIT
#include "Suggestion.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <numeric>

namespace helvantine::tool
{

namespace
{

/// Letters to insert, delete or replace, and neighbours to swap, from one word to the other.
std::size_t measureDistance(const std::string& a, const std::string& b)
{
    std::vector<std::vector<std::size_t>> steps(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    std::iota(steps[0].begin(), steps[0].end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        steps[i][0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1,
                                    steps[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
        }
    }
    return steps[a.size()][b.size()];
}

std::string quote(const std::string& word)
{
    return '"' + word + '"';
}

std::string suggest(const std::string& word, const std::vector<std::string>& candidates)
{
    const std::string nearest = findNearest(word, candidates);
    if (!nearest.empty())
        return "; did you mean " + quote(nearest) + "?";
    std::string list;
    for (const std::string& candidate : candidates)
        list += (list.empty() ? "; there are " : ", ") + candidate;
    return list;
}

std::vector<std::string> listCommands(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* command :
         app.get_subcommands([](const CLI::App* candidate) { return !candidate->get_group().empty(); }))
        names.push_back(command->get_name());
    return names;
}

const CLI::App* findCommand(const CLI::App& app, const std::string& name)
{
    const auto found =
        app.get_subcommands([&](const CLI::App* candidate) { return candidate->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

std::vector<std::string> listOptions(const CLI::App& command)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

/// The option that an argument names, without its value; empty for what is none, numbers among them.
std::string getOption(const std::string& argument)
{
    if (argument.starts_with("--"))
        return argument.substr(0, argument.find('='));
    const bool isOption =
        argument.size() > 1 && argument[0] == '-' && !std::isdigit(static_cast<unsigned char>(argument[1]));
    return isOption ? argument.substr(0, 2) : std::string();
}

} // namespace

std::string findNearest(const std::string& word, const std::vector<std::string>& candidates)
{
    constexpr std::size_t lettersForEachMistake = 3;
    constexpr std::size_t longest = 64; // what is longer is no slip of a finger
    std::string nearest;
    std::size_t least = word.size() / lettersForEachMistake + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = word.size() > longest ? least : measureDistance(word, candidate);
        if (distance < least) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string explainUnknownWord(const CLI::App& app, const std::vector<std::string>& arguments)
{
    const CLI::App* command = &app;
    for (const std::string& argument : arguments) {
        if (argument == "--")
            break;
        const std::string option = getOption(argument);
        if (!option.empty() && !command->get_option_no_throw(option))
            return (command == &app ? "" : command->get_name() + ": ") + "there is no option " +
                   quote(option) + suggest(option, listOptions(*command));
        if (!option.empty() || command != &app)
            continue;
        if (!(command = findCommand(app, argument)))
            return "there is no command " + quote(argument) + suggest(argument, listCommands(app));
    }
    return {};
}

} // namespace helvantine::tool
