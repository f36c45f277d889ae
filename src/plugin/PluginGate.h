// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/PluginVerdicts.h"

#include <optional>
#include <string>

namespace helvantine
{

/// Decides which files of a plugin folder this process may load, for one scan: those that it runs on already, and those
/// that have passed a trial. What it knows of a library from an earlier start costs a look at the file's stamp.
///
/// The program of the trials is what the environment variable HELVANTINE_PLUGIN_TRIAL names, else
/// `helvantine-plugin-trial` beside the runtime or the executable. Without it libraries are loaded untried, which is
/// said once; set to nothing, the variable asks for that.
class PluginGate
{
public:
    PluginGate() = default;
    ~PluginGate();
    PluginGate(const PluginGate&) = delete;
    PluginGate& operator=(const PluginGate&) = delete;

    /// False, with a report unless it is none of ours, for a library that must not be loaded.
    bool admits(const std::string& library);

private:
    PluginVerdict tryNew(const std::string& library, const FileStamp& stamp);

    std::optional<PluginVerdicts> m_verdicts; ///< read when the first library asks for it
    bool m_hasNew = false;
};

} // namespace helvantine
