// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine::tool
{

/// A fresh folder under the system's temporary one, removed with all its contents at the end.
///
/// Those of programs that were killed are removed by the next one that makes a folder: a living owner keeps its own
/// locked.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// Ends in a separator; empty if no folder could be made.
    const std::string& getPath() const { return m_path; }

    /// Removes the folders there are, in a handler of a signal that ends the process.
    static void removeAllFromSignal();

private:
    std::string m_path;
    int m_lock = -1;  ///< the folder, open
    int m_place = -1; ///< among those that a signal's handler knows
};

} // namespace helvantine::tool
