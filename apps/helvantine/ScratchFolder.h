// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine::tool
{

/// A fresh folder under the system's temporary one, removed with all its contents at the end.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// Ends in a separator; empty if no folder could be made.
    const std::string& getPath() const { return m_path; }

private:
    std::string m_path;
};

} // namespace helvantine::tool
