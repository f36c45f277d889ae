// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/VirtualFileSystem.h>

#include <memory>

namespace helvantine
{

class ZipArchive;

/// The files of an archive, read only. The archive may stand behind other bytes in its file.
///
/// Closed, it has no files and holds nothing: the archive's file may be replaced or deleted. Files
/// that were opened before live on; each is a copy in memory.
class HELVANTINE_CORE_API ZipVirtualFileSystem : public VirtualFileSystem
{
public:
    ZipVirtualFileSystem();
    ~ZipVirtualFileSystem() override;

    /// Closes what was open before. False, and closed, if the file is no archive.
    bool open(const char* path);
    void close();
    bool isOpen() const { return m_archive != nullptr; }

    Buffer* openFile(const char* path) override;

    /// Always null.
    Buffer* createFile(const char* path) override;
    bool isWritable() const override { return false; }
    bool hasRoot() const override { return true; }
    bool hasFile(const char* path) const override;

private:
    std::unique_ptr<ZipArchive> m_archive;
};

} // namespace helvantine
