// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>

/// Paths as text: nothing here looks at the disk. Both `/` and `\` separate; a null path counts as
/// an empty one.

namespace helvantine
{

/// The folder, without a separator at its end: "." for a bare name, "/" for "/x".
HELVANTINE_CORE_API std::string getPath(const char* path);

/// The folder with a separator at its end, so that names can be appended. Empty stays empty.
HELVANTINE_CORE_API std::string withSeparator(const std::string& folder);

/// What follows the last separator, with its extension.
HELVANTINE_CORE_API std::string getFilename(const char* path);

/// Takes a path apart such that `makePath` of the parts is the path again: drive "C:" or empty,
/// directory with its trailing separator, name, extension with its dot. A dot in front of a name, as
/// in ".profile", is part of the name.
HELVANTINE_CORE_API void splitPath(const char* path, std::string& drive, std::string& directory,
                                   std::string& name, std::string& extension);

HELVANTINE_CORE_API std::string makePath(const std::string& drive, const std::string& directory,
                                         const std::string& name, const std::string& extension);

/// One spelling for each path, still openable and unchanged by a second pass: `\` becomes `/`, doubled
/// separators and `.` parts go, `a/..` goes; drive, leading `/` and leading `..` stay.
HELVANTINE_CORE_API std::string makeValidFilename(const char* path);

/// The name of a path below a root: as above, but drive and leading `/` go too, and `..` stops at the
/// root. "/home/a/../t.png" is "home/t.png". Empty if nothing is left.
HELVANTINE_CORE_API std::string makeRootedName(const char* path);

/// The path of `name` in a folder, under the rule of makeRootedName. Empty if the name is, or if a link would lead
/// out of the folder.
HELVANTINE_CORE_API std::string resolveInside(const std::string& folder, const char* name);

} // namespace helvantine
