// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/VirtualFileSystem.h>

#include <map>
#include <string>
#include <vector>

namespace helvantine
{

/// Files in main memory, under the rule of names of rooted folders. What is opened reads a copy.
class HELVANTINE_CORE_API MemoryVirtualFileSystem : public VirtualFileSystem
{
public:
    /// In place of one that is there. False, and nothing is kept, for a path that leads to no name.
    bool add(const char* path, std::vector<unsigned char> bytes);

    void remove(const char* path);

    Buffer* openFile(const char* path) override;
    Buffer* createFile(const char* path) override; ///< null: `add` makes the files
    bool isWritable() const override { return false; }
    bool hasRoot() const override { return true; }
    bool hasFile(const char* path) const override;

private:
    std::map<std::string, std::vector<unsigned char>> m_files; ///< by makeRootedName
};

} // namespace helvantine
