// SPDX-License-Identifier: MIT
#include <helvantine/core/Path.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace helvantine
{

namespace
{

namespace fs = std::filesystem;

/// The path with every link resolved as far as it exists, and without a separator at its end; empty if that can't be
/// told.
fs::path toReal(const fs::path& path)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    const fs::path real = error ? fs::path() : fs::weakly_canonical(absolute, error);
    if (error)
        return {};
    return real.has_filename() || !real.has_relative_path() ? real : real.parent_path();
}

bool isInside(const fs::path& folder, const fs::path& path)
{
    return std::ranges::mismatch(folder, path).in1 == folder.end();
}

/// A link to nothing can't be followed, so it can't be judged.
bool isDanglingLink(const fs::path& path)
{
    std::error_code error;
    return fs::is_symlink(fs::symlink_status(path, error)) && !fs::exists(path, error);
}

} // namespace

std::string resolveInside(const std::string& folder, const char* name)
{
    const std::string rooted = makeRootedName(name);
    if (rooted.empty())
        return {};
    const fs::path path = fs::path(folder) / rooted;
    const fs::path realFolder = toReal(folder);
    const fs::path realPath = toReal(path);
    if (realFolder.empty() || realPath.empty() || isDanglingLink(path) || !isInside(realFolder, realPath))
        return {};
    return path.string();
}

} // namespace helvantine
