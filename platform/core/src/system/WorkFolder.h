// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine
{

/// A hidden folder beside a file that is being written, for what isn't complete yet.
///
/// It is locked while its process lives. The next one made in the same place removes those whose process has
/// died, and no others: several processes may write into one folder.
class WorkFolder
{
public:
    WorkFolder() = default;
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    ~WorkFolder(); ///< removes it with the files in it

    /// Makes it in a folder, and clears away what killed processes have left there. False, with a report, if it
    /// can't be made.
    bool open(const std::string& place);

    /// The path of a file in it; empty unless open.
    std::string file(const char* name) const;

private:
    std::string m_path;
    int m_lock = -1;
};

} // namespace helvantine
