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

template <class T>
bool readAt(WinFile& file, std::uint64_t offset, T& record)
{
    return file.seek(offset) && file.read(&record, sizeof(record)) == sizeof(record);
}

/// Looks before the loader does: a document that bears a library's name is refused by us, and so is a library
/// that was copied in part, which the loader would map beyond its end and die of.
bool hasWholeSegments(const char* path)
{
    WinFile file;
    ElfW(Ehdr) header = {};
    if (!file.open(path) || !readAt(file, 0, header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_type != ET_DYN || header.e_phentsize != sizeof(ElfW(Phdr)))
        return false;
    const std::uint64_t size = file.getSize();
    for (std::uint64_t i = 0; i < header.e_phnum; ++i) {
        ElfW(Phdr) segment = {};
        if (!readAt(file, header.e_phoff + i * sizeof(segment), segment))
            return false;
        if (segment.p_filesz > size || segment.p_offset > size - segment.p_filesz)
            return false;
    }
    return true;
}

/// Whether the library itself holds the address. A look-up by name also finds what the libraries export that
/// it stands on.
bool isInLibrary(void* address, void* library)
{
    Dl_info info = {};
    link_map* holder = nullptr;
    link_map* own = nullptr;
    return dladdr1(address, &info, reinterpret_cast<void**>(&holder), RTLD_DL_LINKMAP) != 0 &&
           dlinfo(library, RTLD_DI_LINKMAP, &own) == 0 && holder == own;
}

} // namespace

bool isLibrary(const char* path)
{
    return path && hasWholeSegments(path);
}

bool isLibraryLoaded(const char* path)
{
    if (!path)
        return false;
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    void* library = error ? nullptr : dlopen(absolute.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (library)
        dlclose(library);
    return library;
}

void* loadLibrary(const char* path)
{
    if (!path)
        return nullptr;
    if (!isLibrary(path)) {
        reportProblem("library", formatString("'%s' is absent or no whole library of this system", path));
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

std::string getLibraryPath(const void* address)
{
    Dl_info info = {};
    return dladdr(address, &info) != 0 && info.dli_fname ? info.dli_fname : "";
}

void freeLibrary(void* library)
{
    if (library)
        dlclose(library);
}

} // namespace helvantine
