// SPDX-License-Identifier: MIT
#include <helvantine/core/Path.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace helvantine
{

namespace
{

bool isSeparator(char c)
{
    return c == '/' || c == '\\';
}

std::string_view toView(const char* path)
{
    return path ? std::string_view(path) : std::string_view();
}

/// "C:" in front of a path, else empty.
std::string_view getDrive(std::string_view path)
{
    const bool letter =
        path.size() >= 2 && ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z'));
    return letter && path[1] == ':' ? path.substr(0, 2) : std::string_view();
}

/// Where the last part of a path begins.
std::size_t findName(std::string_view path)
{
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string_view::npos ? getDrive(path).size() : separator + 1;
}

/// The parts between separators without empty ones and `.`, each `..` having taken back the part
/// before it. A `..` with nothing to take back stays, unless the path has a root to stop at.
std::vector<std::string_view> resolveParts(std::string_view path, bool stopsAtRoot)
{
    std::vector<std::string_view> parts;
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find_first_of("/\\", start), path.size());
        const std::string_view part = path.substr(start, end - start);
        start = end + 1;
        if (part.empty() || part == ".")
            continue;
        const bool up = part == "..";
        if (up && !parts.empty() && parts.back() != "..")
            parts.pop_back();
        else if (!up || !stopsAtRoot)
            parts.push_back(part);
    }
    return parts;
}

void appendParts(std::string& path, const std::vector<std::string_view>& parts)
{
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i != 0)
            path += '/';
        path += parts[i];
    }
}

} // namespace

std::string getPath(const char* path)
{
    const std::string_view whole = toView(path);
    const std::size_t drive = getDrive(whole).size();
    std::size_t end = findName(whole);
    if (end == drive)
        return std::string(whole.substr(0, drive)) + ".";
    while (end > drive + 1 && isSeparator(whole[end - 1]))
        --end;
    return std::string(whole.substr(0, end));
}

std::string withSeparator(const std::string& folder)
{
    return folder.empty() || folder.back() == '/' || folder.back() == '\\' ? folder : folder + '/';
}

std::string getFilename(const char* path)
{
    const std::string_view whole = toView(path);
    return std::string(whole.substr(findName(whole)));
}

void splitPath(const char* path, std::string& drive, std::string& directory, std::string& name,
               std::string& extension)
{
    const std::string whole(toView(path)); // a copy: an argument may be the path itself
    const std::size_t driveEnd = getDrive(whole).size();
    const std::size_t nameStart = findName(whole);
    const std::size_t firstLetter = whole.find_first_not_of('.', nameStart);
    std::size_t dot = whole.rfind('.');
    if (dot == std::string::npos || firstLetter == std::string::npos || dot < firstLetter)
        dot = whole.size();
    drive = whole.substr(0, driveEnd);
    directory = whole.substr(driveEnd, nameStart - driveEnd);
    name = whole.substr(nameStart, dot - nameStart);
    extension = whole.substr(dot);
}

std::string makePath(const std::string& drive, const std::string& directory, const std::string& name,
                     const std::string& extension)
{
    return drive + directory + name + extension;
}

std::string makeValidFilename(const char* path)
{
    const std::string_view whole = toView(path);
    std::string valid(getDrive(whole));
    const std::string_view rest = whole.substr(valid.size());
    const bool absolute = !rest.empty() && isSeparator(rest[0]);
    if (absolute)
        valid += '/';
    appendParts(valid, resolveParts(rest, absolute));
    if (valid.empty() && !whole.empty())
        valid = "."; // "a/.." still names a folder
    return valid;
}

std::string makeRootedName(const char* path)
{
    std::string name(toView(path));
    bool clean = false;
    while (!clean) { // "./C:/x" shows its drive only when the first part is gone
        const std::string rest = name.substr(getDrive(name).size());
        name.clear();
        appendParts(name, resolveParts(rest, true));
        clean = getDrive(name).empty();
    }
    return name;
}

} // namespace helvantine
