// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>
#include <helvantine/core/RefCount.h>

namespace helvantine
{

class Buffer;

/// One place where files are looked up: a folder, an archive, the plain disk.
///
/// Put on a `FileSystem`, which holds a counted reference.
class HELVANTINE_CORE_API VirtualFileSystem : public IRefCount
{
public:
    /// The file for reading, owned by the caller; null if it isn't here.
    virtual Buffer* openFile(const char* path) = 0;

    /// A new or emptied file for writing, owned by the caller; null if it can't be made here.
    virtual Buffer* createFile(const char* path) = 0;

    /// True if files can be made here at all.
    virtual bool isWritable() const = 0;

    /// True if no path leads out of this place, so that names from a document may be tried.
    virtual bool hasRoot() const = 0;

    /// Whether a file of that name is here, even one that can't be read.
    virtual bool hasFile(const char* path) const = 0;

    /// True at first. The stack passes over a disabled system.
    void setEnabled(bool enabled) { m_enabled = enabled; }
    bool isEnabled() const { return m_enabled; }

private:
    bool m_enabled = true;
};

} // namespace helvantine
