// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>

/// Places and time, as the operating system tells them. Folders come without a separator at the end.

namespace helvantine
{

/// The executable of this process: absolute, of any length.
HELVANTINE_CORE_API std::string getExecutablePath();

/// The folder of this process's executable: where a host finds the libraries that it was shipped with.
HELVANTINE_CORE_API std::string getExecutableFolder();

/// The picture beside the executable that bears its name with ".png"; empty if there is none.
HELVANTINE_CORE_API std::string findApplicationIcon();

/// This user's folder for files that can be made again; empty if there is none. It may not exist yet.
HELVANTINE_CORE_API std::string getCacheFolder();

HELVANTINE_CORE_API std::string getTemporaryFolder();

/// Seconds since some fixed moment; never goes back.
HELVANTINE_CORE_API double getTime();

} // namespace helvantine
