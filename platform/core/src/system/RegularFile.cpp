// SPDX-License-Identifier: MIT
#include "system/RegularFile.h"

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace helvantine
{

namespace
{

void reportNotRegular(const char* action, const char* path)
{
    reportProblem("file", formatString("can't %s '%s': not a regular file", action, path));
}

} // namespace

std::string makeRandomLetters(std::size_t count)
{
    constexpr char letters[] = "0123456789abcdefghijklmnopqrstuvwxyz";
    std::random_device random;
    std::string text;
    while (text.size() < count)
        text += letters[random() % 36];
    return text;
}

void reportSystemError(const char* action, const char* path, int error)
{
    const std::string words = std::system_category().message(error);
    reportProblem("file", formatString("can't %s '%s': %s", action, path, words.c_str()));
}

int openRegularFile(const char* path, std::uint64_t& size)
{
    return openRegularFile(path, size, O_RDONLY, "open");
}

int openRegularFile(const char* path, std::uint64_t& size, int flags, const char* action)
{
    // Asked by path first, since opening alone can disturb a device, and again once it is open, in case
    // the path came to name something else meanwhile.
    struct stat status;
    if (stat(path, &status) == 0 && !S_ISREG(status.st_mode)) {
        reportNotRegular(action, path);
        return -1;
    }
    const int file = open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (file < 0) {
        const bool absent = errno == ENOENT || errno == ENOTDIR;
        if (!absent || (flags & O_CREAT) != 0)
            reportSystemError(action, path, errno);
        return -1;
    }
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
        close(file);
        reportNotRegular(action, path);
        return -1;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return file;
}

std::string createUniqueFile(const std::string& folder, const std::string& prefix, unsigned mode)
{
    std::string path;
    int file = -1;
    for (int attempt = 0; attempt < 100 && file < 0; ++attempt) {
        path = folder + "/" + prefix + makeRandomLetters(10);
        file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file < 0 && errno != EEXIST)
            break;
    }
    if (file < 0) {
        reportSystemError("create", path.c_str(), errno);
        return {};
    }
    close(file);
    return path;
}

} // namespace helvantine
