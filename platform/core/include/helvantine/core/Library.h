// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>

namespace helvantine
{

/// Loads exactly the file named, never one found by searching. Null, with a report, if it is no whole library
/// of this system. The same file loaded again is the same module, counted.
HELVANTINE_CORE_API void* loadLibrary(const char* path);

/// Whether the file is a whole library of this system, by its headers. Nothing of it is loaded or run.
HELVANTINE_CORE_API bool isLibrary(const char* path);

/// Whether this process has the file loaded already, as one of its own libraries or by `loadLibrary`.
HELVANTINE_CORE_API bool isLibraryLoaded(const char* path);

/// Null if the library itself doesn't export the name, whatever those do that it stands on. The address dies
/// with the module.
HELVANTINE_CORE_API void* getLibrarySymbol(void* library, const char* name);

/// The file of the library, or the program, that holds this function or static object, by the path that it
/// was loaded from; empty if none does.
HELVANTINE_CORE_API std::string getLibraryPath(const void* address);

/// Undoes one `loadLibrary`. Null does nothing.
HELVANTINE_CORE_API void freeLibrary(void* library);

} // namespace helvantine
