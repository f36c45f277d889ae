// SPDX-License-Identifier: MIT
#include "ScratchFolder.h"

#include <helvantine/core/System.h>
#include <helvantine/core/UniqueId.h>

#include <atomic>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace helvantine::tool
{

namespace
{

constexpr const char* prefix = "helvantine-scratch-";

/// A path that a handler can read: it allocates nothing, and takes no lock.
struct Place
{
    std::atomic<bool> taken{false};
    std::atomic<bool> ready{false};
    char path[1024] = {};
};
Place g_places[8];

int notePlace(const std::string& path)
{
    for (int i = 0; i < static_cast<int>(std::size(g_places)); ++i) {
        Place& place = g_places[i];
        if (path.size() >= sizeof(place.path) || place.taken.exchange(true))
            continue;
        std::memcpy(place.path, path.c_str(), path.size() + 1);
        place.ready = true;
        return i;
    }
    return -1;
}

/// Locks a folder; the lock goes with the process, however it ends. -1 if another has it.
int lockFolder(const char* path)
{
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder >= 0 && flock(folder, LOCK_EX | LOCK_NB) == 0)
        return folder;
    if (folder >= 0)
        close(folder);
    return -1;
}

/// Whether a folder is ours and old enough for its owner to have locked it.
bool isLeftOver(const char* path)
{
    constexpr std::time_t settled = 60; // seconds
    struct stat status = {};
    return lstat(path, &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
           std::time(nullptr) - status.st_mtime > settled;
}

void sweep(const std::string& folder)
{
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
    {
        const std::string path = entry->path().string();
        if (!entry->path().filename().string().starts_with(prefix) || !isLeftOver(path.c_str()))
            continue;
        const int lock = lockFolder(path.c_str());
        if (lock < 0)
            continue;
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
        close(lock);
    }
}

} // namespace

ScratchFolder::ScratchFolder()
{
    const std::string folder = getTemporaryFolder();
    sweep(folder);
    const std::string path = folder + "/" + prefix + uniqueIdToString(generateUniqueId());
    if (mkdir(path.c_str(), S_IRWXU) != 0)
        return;
    m_lock = lockFolder(path.c_str());
    m_place = notePlace(path);
    m_path = path + "/";
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    if (!m_path.empty())
        std::filesystem::remove_all(m_path, ignored);
    if (m_lock >= 0)
        close(m_lock);
    if (m_place >= 0) {
        g_places[m_place].ready = false;
        g_places[m_place].taken = false;
    }
}

/// By another program: what walks through folders isn't allowed in a handler, and starting a program is.
void ScratchFolder::removeAllFromSignal()
{
    for (const Place& place : g_places) {
        if (!place.ready)
            continue;
        const pid_t process = fork();
        if (process == 0) {
            execl("/bin/rm", "rm", "-rf", "--", place.path, static_cast<char*>(nullptr));
            _exit(1);
        }
        if (process > 0)
            waitpid(process, nullptr, 0);
    }
}

} // namespace helvantine::tool
