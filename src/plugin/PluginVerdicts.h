// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/PluginTrial.h"

#include <helvantine/core/FileUtil.h>

#include <map>
#include <string>

namespace helvantine
{

/// The verdicts on libraries that hold, as long as neither library nor runtime change. They lie in a file beside the
/// other caches; one that is damaged counts as empty.
class PluginVerdicts
{
public:
    /// path: the file; empty where there is no place for one.
    PluginVerdicts(std::string path, const FileStamp& runtime);

    /// Null if the library, as its stamp says it is, hasn't been tried.
    const PluginVerdict* find(const std::string& library, const FileStamp& stamp) const;
    void keep(const std::string& library, const FileStamp& stamp, const PluginVerdict& verdict);

    /// Writes the file anew; nothing is said where that fails, since the next start tries again.
    void save() const;

private:
    struct Entry
    {
        FileStamp library;
        FileStamp runtime;
        PluginVerdict verdict;
    };

    void load();

    std::string m_path;
    FileStamp m_runtime;
    std::map<std::string, Entry> m_entries; ///< by the library's path
};

} // namespace helvantine
