// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>

namespace helvantine
{

class Buffer;

/// Writes archives such that equal contents in equal order give equal bytes.
///
/// The target isn't touched before `close`: the archive is written beside it, flushed to disk and
/// put in its place at once. A save that fails or is killed leaves the old file as it was. What a killed one
/// leaves in the folder, the next archive that is written there removes.
class HELVANTINE_CORE_API ZipWrite
{
public:
    /// A handle for `close` or `discard`, or null if nothing can be written beside the path. With `createNew` false
    /// the entries of an existing archive are kept and the new ones come behind.
    static void* open(const char* path, bool createNew);

    /// Adds the file that `name` opens through `g_fileSystem`, under `makeRootedName(name)`. The bytes
    /// are taken at once. False if the file can't be read, the name comes out empty, or is in already. A file that
    /// isn't there is left out; one that is there but can't be read keeps the archive from being put in place.
    static bool add(void* handle, const char* name);

    /// As above, with the bytes between the buffer's position and its end.
    static bool add(void* handle, const char* name, Buffer* buffer);

    /// The path for a file of the caller's own, in the hidden folder in which the archive is made; it goes with the
    /// handle, or with the next archive if this process is killed. Empty for null.
    static std::string getScratchPath(void* handle, const char* name);

    /// Whether all that was added is in: `close` refuses an archive that lacks something. False for null.
    static bool isComplete(void* handle);

    /// Finishes the file. False if it could not be put in place; the handle is gone either way.
    /// Null gives false.
    static bool close(void* handle);

    /// Gives the archive up: the target stays as it was, and nothing is left beside it. Null does nothing.
    static void discard(void* handle);
};

} // namespace helvantine
