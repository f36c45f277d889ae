// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace helvantine
{

/// Opens an existing regular file for reading and tells its size; -1, with a report unless it is
/// absent, if it is anything else. Never waits for a pipe and never disturbs a device.
int openRegularFile(const char* path, std::uint64_t& size);

/// As above with flags of the system's open, for `action` ("open", "create") in reports. With O_CREAT
/// absence is reported too, since then a folder is missing.
int openRegularFile(const char* path, std::uint64_t& size, int flags, const char* action);

/// Makes an empty file in a folder under a new name that starts with `prefix`. Returns its path, or an
/// empty text with a report.
std::string createUniqueFile(const std::string& folder, const std::string& prefix, unsigned mode);

/// So many random letters and digits, for names.
std::string makeRandomLetters(std::size_t count);

/// `file: can't <action> '<path>': <words of the system's error number>`
void reportSystemError(const char* action, const char* path, int error);

} // namespace helvantine
