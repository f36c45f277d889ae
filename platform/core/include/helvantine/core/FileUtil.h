// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <cstdint>
#include <string>
#include <vector>

/// Files on disk, by plain path. Everything here refuses a null path and reports why it failed,
/// except that an absent file is no problem to `deleteFile`, `findFiles` and `getFileStamp`.

namespace helvantine
{

struct FileInfo
{
    std::string path; ///< includes the folder as it was given
    std::uint64_t size = 0;
};

/// What changes when a file changes. Equal stamps mean: not written in between.
struct FileStamp
{
    bool exists = false;
    std::uint64_t size = 0;
    std::int64_t changeTime = 0; ///< nanoseconds, comparable only with each other

    bool operator==(const FileStamp&) const = default;
};

/// Copies the bytes and the permissions; makes missing folders of the target. Copying a file onto
/// itself, however named, succeeds and changes nothing. With `overwrite` false an existing target is
/// a failure. A failed copy leaves an existing target as it was.
HELVANTINE_CORE_API bool copyFile(const char* source, const char* target, bool overwrite);

/// Regular files whose name matches a pattern of `*`, `?` and literal letters in either case, ordered
/// by the bytes of their paths. With `subfolders`, those of all folders below as well; linked folders are not
/// followed. An absent folder gives none.
HELVANTINE_CORE_API std::vector<FileInfo> findFiles(const char* folder, const char* pattern, bool subfolders);

/// False if absent; never a folder.
HELVANTINE_CORE_API bool deleteFile(const char* path);

/// Makes an empty file of a new name that starts with `prefix`, readable by this user alone. Returns its
/// path, or an empty text.
HELVANTINE_CORE_API std::string createTemporaryFile(const char* folder, const char* prefix);

/// Puts `from` in the place of `to` at once: at every moment `to` is the old file or the new one.
HELVANTINE_CORE_API bool replaceFile(const char* from, const char* to);

/// Returns when the file's bytes are on disk.
HELVANTINE_CORE_API bool flushFile(const char* path);

/// Makes the folder and those above it. True if it is there afterwards.
HELVANTINE_CORE_API bool makeFolders(const char* path);

/// Lets whoever may read the file run it as a program, too.
HELVANTINE_CORE_API bool makeExecutable(const char* path);

HELVANTINE_CORE_API FileStamp getFileStamp(const char* path);

} // namespace helvantine
