// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/VirtualFileSystem.h>

#include <map>
#include <string>
#include <vector>

namespace helvantine::tool
{

/// The files of a folder in the place of those that a shader includes by that name, in whatever folder.
///
/// A file that was read stays as it was until it is forgotten: so a shader is made of the very texts that compiled.
class LiveIncludes final : public VirtualFileSystem
{
public:
    /// folder: absolute, ends in a separator.
    void setFolder(const std::string& folder) { m_folder = folder; }
    void forget(const std::string& name) { m_files.erase(name); }

    /// Where the text comes from that was read as `path`; empty if not from this folder.
    std::string locate(const std::string& path) const;

    Buffer* openFile(const char* path) override;
    Buffer* createFile(const char*) override { return nullptr; }
    bool isWritable() const override { return false; }
    bool hasRoot() const override { return true; }
    bool hasFile(const char* path) const override;

private:
    std::string m_folder;
    std::map<std::string, std::vector<unsigned char>> m_files; ///< by name
};

} // namespace helvantine::tool
