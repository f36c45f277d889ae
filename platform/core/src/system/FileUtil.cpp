// SPDX-License-Identifier: MIT
#include <helvantine/core/FileUtil.h>

#include "system/RegularFile.h"

#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/WinFile.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace helvantine
{

namespace
{

namespace fs = std::filesystem;

bool copyBytes(WinFile& from, WinFile& to)
{
    unsigned char bytes[65536];
    std::uint64_t left = from.getSize();
    while (left != 0) {
        const std::size_t got = from.read(bytes, std::min<std::uint64_t>(left, sizeof(bytes)));
        if (got == 0 || to.write(bytes, got) != got)
            return false;
        left -= got;
    }
    return true;
}

/// Copies into a fresh file beside the target, which then takes the target's place.
bool copyInto(const char* source, const struct stat& sourceStatus, const char* target)
{
    const std::string folder = getPath(target);
    WinFile from, to;
    if (!from.open(source) || !makeFolders(folder.c_str()))
        return false;
    const std::string neighbour = createUniqueFile(folder, "." + getFilename(target) + "-", 0600);
    if (neighbour.empty())
        return false;
    const bool copied = to.create(neighbour.c_str()) && copyBytes(from, to) && to.close() &&
                        chmod(neighbour.c_str(), sourceStatus.st_mode & 0777) == 0;
    if (copied && std::rename(neighbour.c_str(), target) == 0)
        return true;
    reportSystemError("copy to", target, errno);
    deleteFile(neighbour.c_str());
    return false;
}

char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

/// `*` stands for any text, `?` for one byte. Goes back to the latest `*` only, so it takes at most
/// the product of both lengths.
bool matches(std::string_view name, std::string_view pattern)
{
    std::size_t n = 0, p = 0, starPattern = std::string_view::npos, starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starPattern = ++p;
            starName = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || toLower(pattern[p]) == toLower(name[n]))) {
            ++p;
            ++n;
        } else if (starPattern != std::string_view::npos) {
            p = starPattern;
            n = ++starName;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

template <class Iterator>
void collectFiles(const char* folder, const char* pattern, std::vector<FileInfo>& files)
{
    std::error_code error;
    Iterator entry(folder, fs::directory_options::skip_permission_denied, error);
    while (!error && entry != Iterator()) {
        std::error_code gone;
        const bool regular = entry->is_regular_file(gone);
        if (regular && matches(entry->path().filename().native(), pattern)) {
            const std::uintmax_t size = entry->file_size(gone);
            files.push_back({entry->path().native(), gone ? 0 : size});
        }
        entry.increment(error);
    }
}

} // namespace

bool copyFile(const char* source, const char* target, bool overwrite)
{
    if (!source || !target)
        return false;
    struct stat from, to;
    if (stat(source, &from) != 0) {
        reportSystemError("copy", source, errno);
        return false;
    }
    const bool targetExists = stat(target, &to) == 0;
    if (targetExists && from.st_dev == to.st_dev && from.st_ino == to.st_ino && S_ISREG(from.st_mode))
        return true;
    if (targetExists && (!overwrite || !S_ISREG(to.st_mode))) {
        reportSystemError("copy to", target, EEXIST);
        return false;
    }
    return copyInto(source, from, target);
}

std::vector<FileInfo> findFiles(const char* folder, const char* pattern, bool subfolders)
{
    std::vector<FileInfo> files;
    if (!folder || !pattern)
        return files;
    if (subfolders)
        collectFiles<fs::recursive_directory_iterator>(folder, pattern, files);
    else
        collectFiles<fs::directory_iterator>(folder, pattern, files);
    std::ranges::sort(files, {}, &FileInfo::path); // char_traits compare as unsigned bytes
    return files;
}

bool deleteFile(const char* path)
{
    if (!path)
        return false;
    if (unlink(path) == 0)
        return true;
    if (errno != ENOENT)
        reportSystemError("delete", path, errno);
    return false;
}

std::string createTemporaryFile(const char* folder, const char* prefix)
{
    return folder && prefix ? createUniqueFile(folder, prefix, 0600) : std::string();
}

bool replaceFile(const char* from, const char* to)
{
    if (!from || !to)
        return false;
    if (std::rename(from, to) != 0) {
        reportSystemError("put a new file in place of", to, errno);
        return false;
    }
    // The folder holds the name; not every file system can flush one, and the name is right already.
    const int folder = open(getPath(to).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        close(folder);
    }
    return true;
}

bool flushFile(const char* path)
{
    std::uint64_t size = 0;
    const int file = path ? openRegularFile(path, size) : -1;
    if (file < 0)
        return false;
    const bool flushed = fsync(file) == 0;
    if (!flushed)
        reportSystemError("flush", path, errno);
    close(file);
    return flushed;
}

bool makeFolders(const char* path)
{
    if (!path)
        return false;
    std::error_code error;
    fs::create_directories(path, error);
    if (!error && fs::is_directory(path, error))
        return true;
    reportSystemError("make folder", path, error ? error.value() : ENOTDIR);
    return false;
}

bool makeExecutable(const char* path)
{
    if (!path)
        return false;
    struct stat status;
    int error = stat(path, &status) == 0 ? 0 : errno;
    if (error == 0 && !S_ISREG(status.st_mode))
        error = EINVAL;
    const mode_t readable = error == 0 ? status.st_mode & (S_IRUSR | S_IRGRP | S_IROTH) : 0;
    if (error == 0 && chmod(path, (status.st_mode & 07777) | readable >> 2) != 0)
        error = errno;
    if (error != 0)
        reportSystemError("make a program of", path, error);
    return error == 0;
}

FileStamp getFileStamp(const char* path)
{
    struct stat status;
    if (!path || stat(path, &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    constexpr std::int64_t nanoseconds = 1000000000;
    return {true, static_cast<std::uint64_t>(status.st_size),
            status.st_ctim.tv_sec * nanoseconds + status.st_ctim.tv_nsec};
}

} // namespace helvantine
