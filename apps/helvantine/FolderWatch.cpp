// SPDX-License-Identifier: MIT
#include "FolderWatch.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <sys/inotify.h>
#include <unistd.h>

namespace helvantine::tool
{

FolderWatch::~FolderWatch()
{
    if (m_events >= 0)
        close(m_events);
}

std::string FolderWatch::open(const std::string& folder)
{
    m_folder = folder;
    m_events = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_events >= 0)
        follow(0.0);
    return m_watch < 0 ? folder + ": can't be watched: " + std::strerror(errno) : std::string();
}

/// A folder that is watched keeps its number, so another number is another folder.
void FolderWatch::follow(double now)
{
    if (now < m_nextLook)
        return;
    m_nextLook = now + s_lookPace;
    const int watch =
        inotify_add_watch(m_events, m_folder.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO | IN_ONLYDIR);
    if (watch == m_watch)
        return;
    if (m_watch >= 0)
        inotify_rm_watch(m_events, m_watch); // fails for one that was deleted
    m_watch = watch;
    if (watch >= 0)
        noteAll();
}

void FolderWatch::noteAll()
{
    std::error_code error;
    for (std::filesystem::directory_iterator entry(m_folder, error), end; !error && entry != end;
         entry.increment(error))
        m_calmFrom[entry->path().filename().string()] = 0.0;
}

void FolderWatch::readEvents(double now)
{
    alignas(inotify_event) char bytes[4096];
    for (ssize_t size; (size = read(m_events, bytes, sizeof bytes)) > 0;) {
        for (const char* at = bytes; at < bytes + size;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(at);
            if (event.mask & IN_Q_OVERFLOW)
                noteAll();
            else if (event.len > 0 && !(event.mask & IN_ISDIR)) // one that is put in place is whole
                m_calmFrom[event.name] = event.mask & IN_MOVED_TO ? now : now + s_calm;
            at += sizeof event + event.len;
        }
    }
}

bool FolderWatch::take(double now, std::string& name)
{
    follow(now);
    readEvents(now);
    for (auto file = m_calmFrom.begin(); file != m_calmFrom.end(); ++file) {
        if (now < file->second)
            continue;
        name = file->first;
        m_calmFrom.erase(file);
        return true;
    }
    return false;
}

} // namespace helvantine::tool
