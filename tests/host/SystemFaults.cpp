// SPDX-License-Identifier: MIT
#include "SystemFaults.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace helvantine::test
{

namespace
{

bool s_counting = false;
int s_calls = 0;
int s_faultAt = -1;
int s_error = 0;
Fault s_fault = Fault::None;
unsigned long long s_room = 0;

[[noreturn]] void die()
{
    kill(getpid(), SIGKILL);
    _exit(1);
}

/// Whether this call fails. Doesn't return from one that kills, other than to let half be written.
bool meetsFault(bool writes = false)
{
    if (!s_counting || s_calls++ != s_faultAt)
        return false;
    if (s_fault == Fault::Kill || (s_fault == Fault::KillHalf && !writes))
        die();
    errno = s_error;
    return s_fault != Fault::None;
}

/// The system's function of a name.
template <class Function>
Function* next(const char* name, Function*)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

void beginFaults(Fault fault, int call, int error)
{
    s_fault = fault;
    s_faultAt = call;
    s_error = error;
    s_calls = 0;
    s_counting = true;
}

int endFaults()
{
    s_counting = false;
    return s_calls;
}

void pretendRoom(unsigned long long bytes)
{
    s_room = bytes;
}

} // namespace helvantine::test

using namespace helvantine::test;

#define SEEN_BY_LIBRARIES extern "C" __attribute__((visibility("default")))
#define NEXT(name) next(#name, static_cast<decltype(name)*>(nullptr))

SEEN_BY_LIBRARIES int open(const char* path, int flags, ...)
{
    static auto* const real = NEXT(open);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return meetsFault() ? -1 : real(path, flags, mode);
}

SEEN_BY_LIBRARIES ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset)
{
    static auto* const real = NEXT(pwrite);
    if (!meetsFault(true))
        return real(file, bytes, size, offset);
    if (s_fault == Fault::KillHalf) {
        real(file, bytes, size / 2, offset);
        die();
    }
    return -1;
}

SEEN_BY_LIBRARIES size_t fwrite(const void* bytes, size_t size, size_t count, FILE* file)
{
    static auto* const real = NEXT(fwrite);
    if (!meetsFault(true))
        return real(bytes, size, count, file);
    if (s_fault == Fault::KillHalf) {
        real(bytes, size, count / 2, file);
        fflush(file);
        die();
    }
    return 0;
}

SEEN_BY_LIBRARIES int fclose(FILE* file)
{
    static auto* const real = NEXT(fclose);
    const bool fails = meetsFault();
    const int result = real(file);
    if (fails)
        errno = s_error;
    return fails ? EOF : result;
}

SEEN_BY_LIBRARIES int close(int file)
{
    static auto* const real = NEXT(close);
    const bool fails = meetsFault();
    const int result = real(file);
    if (fails)
        errno = s_error;
    return fails ? -1 : result;
}

SEEN_BY_LIBRARIES int ftruncate(int file, off_t size) noexcept
{
    static auto* const real = NEXT(ftruncate);
    return meetsFault() ? -1 : real(file, size);
}

SEEN_BY_LIBRARIES int fsync(int file)
{
    static auto* const real = NEXT(fsync);
    return meetsFault() ? -1 : real(file);
}

SEEN_BY_LIBRARIES int rename(const char* from, const char* to) noexcept
{
    static auto* const real = NEXT(rename);
    return meetsFault() ? -1 : real(from, to);
}

SEEN_BY_LIBRARIES int chmod(const char* path, mode_t mode) noexcept
{
    static auto* const real = NEXT(chmod);
    return meetsFault() ? -1 : real(path, mode);
}

SEEN_BY_LIBRARIES int mkdir(const char* path, mode_t mode) noexcept
{
    static auto* const real = NEXT(mkdir);
    return meetsFault() ? -1 : real(path, mode);
}

SEEN_BY_LIBRARIES int mkstemp(char* path)
{
    static auto* const real = NEXT(mkstemp);
    return meetsFault() ? -1 : real(path);
}

SEEN_BY_LIBRARIES int unlinkat(int folder, const char* path, int flags) noexcept
{
    static auto* const real = NEXT(unlinkat);
    return meetsFault() ? -1 : real(folder, path, flags);
}

SEEN_BY_LIBRARIES int rmdir(const char* path) noexcept
{
    static auto* const real = NEXT(rmdir);
    return meetsFault() ? -1 : real(path);
}

SEEN_BY_LIBRARIES int statvfs(const char* path, struct statvfs* status) noexcept
{
    static auto* const real =
        reinterpret_cast<int (*)(const char*, struct statvfs*)>(dlsym(RTLD_NEXT, "statvfs"));
    const int result = real(path, status);
    if (s_room > 0) {
        status->f_frsize = 1;
        status->f_bavail = s_room;
    }
    return result;
}
