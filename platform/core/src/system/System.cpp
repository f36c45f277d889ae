// SPDX-License-Identifier: MIT
#include <helvantine/core/System.h>

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

namespace helvantine
{

namespace
{

/// An absolute folder from the environment, without a separator at its end; else empty.
std::string getFolderVariable(const char* name)
{
    const char* value = std::getenv(name);
    if (!value || value[0] != '/')
        return {};
    std::string folder = value;
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    return folder;
}

} // namespace

std::string getExecutablePath()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

std::string getExecutableFolder()
{
    return getPath(getExecutablePath().c_str());
}

std::string findApplicationIcon()
{
    const std::string executable = getExecutablePath();
    std::string drive, directory, name, extension;
    splitPath(executable.c_str(), drive, directory, name, extension);
    for (const std::string& icon : {executable + ".png", makePath(drive, directory, name, ".png")}) {
        if (getFileStamp(icon.c_str()).exists)
            return icon;
    }
    return {};
}

std::string getCacheFolder()
{
    const std::string chosen = getFolderVariable("XDG_CACHE_HOME");
    if (!chosen.empty())
        return chosen + "/helvantine";
    const std::string home = getFolderVariable("HOME");
    return home.empty() ? home : home + "/.cache/helvantine";
}

std::string getTemporaryFolder()
{
    const std::string chosen = getFolderVariable("TMPDIR");
    std::error_code error;
    return !chosen.empty() && std::filesystem::is_directory(chosen, error) ? chosen : "/tmp";
}

double getTime()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

} // namespace helvantine
