// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/VirtualFileSystem.h>

#include <vector>

namespace helvantine
{

class Buffer;

/// A stack of file systems; a file is read from the first enabled one that has it.
///
/// Rooted folders, archives and `ZipWrite` share one rule of names, `makeRootedName`: a path is
/// looked up below the root and never leaves it.
class HELVANTINE_CORE_API FileSystem
{
public:
    FileSystem();
    FileSystem(const FileSystem&) = delete;
    FileSystem& operator=(const FileSystem&) = delete;

    /// Drops its references, and clears `g_fileSystem` if that names this stack.
    ~FileSystem();

    /// Adds behind the last, to be asked last for reading. The stack takes a reference.
    void addVfs(VirtualFileSystem* vfs);

    /// Adds in front, to be asked first for reading. The stack takes a reference.
    void addVfsAtTop(VirtualFileSystem* vfs);

    /// Drops the reference; an absent system is no error.
    void removeVfs(VirtualFileSystem* vfs);

    /// For reading, owned by the caller; null if no enabled system has it.
    Buffer* openFile(const char* path);

    /// As `openFile`, but only in systems that have a root: for names that a document or a shader
    /// brought along.
    Buffer* openFileInside(const char* path);

    /// Whether an enabled system has it, even if it can't be read.
    bool hasFile(const char* path) const;

    /// For writing, owned by the caller. The last enabled system that is writable makes the file or
    /// fails; a file never lands elsewhere because its place was refused.
    Buffer* createFile(const char* path);

private:
    std::vector<SmartRef<VirtualFileSystem>> m_systems;
};

/// The stack of the current document, not owned; null while there is none.
HELVANTINE_CORE_API extern FileSystem* g_fileSystem;

/// A new, empty stack, owned by the caller, which `g_fileSystem` names from now on.
HELVANTINE_CORE_API FileSystem* createFileSystem();

/// Opens for reading through `g_fileSystem`, or the plain path while there is no stack. What every
/// loader calls. Owned by the caller; null if the file isn't found.
HELVANTINE_CORE_API Buffer* openFile(const char* path);

} // namespace helvantine
