// SPDX-License-Identifier: MIT
#include <helvantine/core/Library.h>

#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/WinFile.h>

#include <cstring>
#include <dlfcn.h>
#include <elf.h>
#include <filesystem>
#include <link.h>

namespace helvantine
{

namespace
{

/// Looks before the loader does, so that a document that bears a library's name is refused by us.
bool isElfFile(const char* path)
{
    WinFile file;
    char magic[SELFMAG] = {};
    return file.open(path) && file.read(magic, SELFMAG) == SELFMAG &&
           std::memcmp(magic, ELFMAG, SELFMAG) == 0;
}

/// Whether the library itself holds the address. A look-up by name also finds what the libraries export that it
/// stands on.
bool isInLibrary(void* address, void* library)
{
    Dl_info info = {};
    link_map* holder = nullptr;
    link_map* own = nullptr;
    return dladdr1(address, &info, reinterpret_cast<void**>(&holder), RTLD_DL_LINKMAP) != 0 &&
           dlinfo(library, RTLD_DI_LINKMAP, &own) == 0 && holder == own;
}

} // namespace

void* loadLibrary(const char* path)
{
    if (!path)
        return nullptr;
    if (!isElfFile(path)) {
        reportProblem("library", formatString("'%s' is absent or no library of this system", path));
        return nullptr;
    }
    // A path with a separator is opened as it stands; a bare name would be searched for.
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    void* library = error ? nullptr : dlopen(absolute.c_str(), RTLD_NOW | RTLD_LOCAL);
    const char* words = library || error ? nullptr : dlerror();
    if (!library)
        reportProblem("library", formatString("can't load '%s': %s", path, words ? words : "no such path"));
    return library;
}

void* getLibrarySymbol(void* library, const char* name)
{
    void* address = library && name ? dlsym(library, name) : nullptr;
    return address && isInLibrary(address, library) ? address : nullptr;
}

void freeLibrary(void* library)
{
    if (library)
        dlclose(library);
}

} // namespace helvantine
