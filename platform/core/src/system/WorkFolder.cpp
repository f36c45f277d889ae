// SPDX-License-Identifier: MIT
#include "system/WorkFolder.h"

#include "system/RegularFile.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace helvantine
{

namespace
{

namespace fs = std::filesystem;

constexpr std::string_view s_prefix = ".helvantine-save-";
constexpr std::size_t s_suffixBytes = 10;

bool isOurName(std::string_view name)
{
    return name.size() == s_prefix.size() + s_suffixBytes && name.starts_with(s_prefix) &&
           name.find_first_not_of("0123456789abcdefghijklmnopqrstuvwxyz", s_prefix.size()) == name.npos;
}

/// The folder's handle, with the lock on it; -1 if it isn't this user's, is in use, or is gone. A new one stays
/// unlocked where the file system knows no locks: nobody will remove it there.
int lockFolder(const std::string& path, bool isNew)
{
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0)
        return -1;
    // Whoever removes a folder holds its lock: one that is still in its place now stays there.
    struct stat opened, named;
    const bool locked = flock(folder, LOCK_EX | LOCK_NB) == 0 || (isNew && errno != EWOULDBLOCK);
    const bool mine = locked && fstat(folder, &opened) == 0 && opened.st_uid == geteuid() &&
                      lstat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
                      named.st_ino == opened.st_ino;
    if (mine)
        return folder;
    close(folder);
    return -1;
}

/// Removes a locked folder and the files in it; it never holds folders.
void removeFolder(const std::string& path, int lock)
{
    const int listed = dup(lock); // closed with the listing
    DIR* listing = listed >= 0 ? fdopendir(listed) : nullptr;
    if (listing) {
        while (const dirent* entry = readdir(listing))
            unlinkat(lock, entry->d_name, 0);
        closedir(listing);
    } else if (listed >= 0) {
        close(listed);
    }
    rmdir(path.c_str());
    close(lock);
}

void removeAbandoned(const std::string& place)
{
    std::error_code error;
    for (fs::directory_iterator entry(place, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
    {
        if (!isOurName(entry->path().filename().native()))
            continue;
        const int lock = lockFolder(entry->path().native(), false);
        if (lock >= 0)
            removeFolder(entry->path().native(), lock);
    }
}

} // namespace

WorkFolder::~WorkFolder()
{
    if (m_lock >= 0)
        removeFolder(m_path, m_lock);
}

bool WorkFolder::open(const std::string& place)
{
    removeAbandoned(place);
    // Between its making and its locking another process may take the new folder for an abandoned one.
    for (int attempt = 0; attempt < 100 && m_lock < 0; ++attempt) {
        m_path = place + "/" + std::string(s_prefix) + makeRandomLetters(s_suffixBytes);
        if (mkdir(m_path.c_str(), 0700) == 0)
            m_lock = lockFolder(m_path, true);
        else if (errno != EEXIST)
            break;
    }
    if (m_lock < 0) {
        reportSystemError("create", m_path.c_str(), errno);
        m_path.clear();
    }
    return m_lock >= 0;
}

std::string WorkFolder::file(const char* name) const
{
    return m_path.empty() ? std::string() : m_path + "/" + name;
}

} // namespace helvantine
