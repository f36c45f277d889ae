// SPDX-License-Identifier: MIT
#include "CommandLine.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

std::optional<int> answerUsage(int argc, char** argv, const char* arguments, int count)
{
    const bool asksForHelp = std::any_of(argv + 1, argv + argc, [](std::string_view argument) {
        return argument == "--help" || argument == "-h";
    });
    if (!asksForHelp && argc == count + 1)
        return std::nullopt;
    std::fprintf(asksForHelp ? stdout : stderr, "usage: %s %s\n", argv[0], arguments);
    return asksForHelp ? 0 : 2;
}
