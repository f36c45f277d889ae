// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/VirtualFileSystem.h>

#include <string>

namespace helvantine
{

/// A folder on disk, or the disk itself.
class HELVANTINE_CORE_API WinVirtualFileSystem : public VirtualFileSystem
{
public:
    /// A folder, with or without a separator at its end. Null means plain paths, absolute or from
    /// the working folder. In a folder no path leads out of it, by name or through a link.
    explicit WinVirtualFileSystem(const char* root);

    Buffer* openFile(const char* path) override;

    /// In a folder, missing folders below the root are made.
    Buffer* createFile(const char* path) override;
    bool isWritable() const override { return true; }
    bool hasRoot() const override { return m_rooted; }
    bool hasFile(const char* path) const override;

private:
    /// Where the path leads on disk; empty if that is outside the root.
    std::string resolve(const char* path) const;

    std::string m_root;
    bool m_rooted;
};

} // namespace helvantine
