// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// How a plugin library is tried in a process of its own, `helvantine-plugin-trial`, before this one loads it.
///
/// That process loads the library, asks it for its classes, makes and drops an object of each without a device, and
/// unloads it. It tells each step beforehand, so that the last one told is the one that it didn't survive. A message is
/// one letter and a text.

namespace helvantine
{

enum PluginTrialMessage : char
{
    TrialGreeting = 'g',
    TrialStep = 's',     ///< what the library's code is called for next
    TrialProblem = 'p',  ///< of the library, in words
    TrialAccepted = 'a', ///< the last of the messages, as the three below
    TrialRefused = 'r',
    TrialForeign = 'f',   ///< no plugin library
    TrialUnloadable = 'u' ///< the loader refuses it
};

inline constexpr const char* pluginTrialGreeting = "helvantine-plugin-trial 1";

/// What is known of a library.
struct PluginVerdict
{
    enum class Kind : std::uint32_t
    {
        Accepted, ///< may be loaded
        Refused,  ///< must not be; the problems say why
        Foreign,  ///< is none of ours
        Unknown   ///< couldn't be tried; the problems say why
    };

    Kind kind = Kind::Unknown;
    std::vector<std::string> problems;
    bool holds = true; ///< until the file changes; otherwise what was met may pass
};

struct PluginTrialOptions
{
    std::string program;         ///< path of the executable
    double processorLimit = 2.0; ///< seconds of a processor; an honest library takes some hundredths
    double patience = 20.0;      ///< seconds, however little of a processor it gets
};

PluginVerdict tryPlugin(const PluginTrialOptions& options, const std::string& library);

} // namespace helvantine
