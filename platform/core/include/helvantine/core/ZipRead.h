// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

namespace helvantine
{

/// Unpacks archives, also those that stand behind other bytes in their file.
///
/// An archive is hostile until checked. Refused before a byte of the entry is written: a name with a
/// drive, a leading separator or a `..` part; links and other special files; more than 65,536
/// entries; 4 GiB in all; more than 1,000 to 1 compression beyond the first MiB of an entry.
class HELVANTINE_CORE_API ZipRead
{
public:
    /// A handle for `close`, or null if the file is no archive.
    static void* open(const char* path);

    /// Unpacks all entries into a folder, which is made if absent; existing files are overwritten.
    /// Stops at the first entry that is refused or can't be written, reports it, and returns false;
    /// the entries before it stay. A null handle or folder gives false.
    static bool extractFiles(void* handle, const char* folder);

    /// Null does nothing.
    static void close(void* handle);
};

} // namespace helvantine
