// SPDX-License-Identifier: MIT
#include "zip/ZipArchive.h"

#include "system/RegularFile.h"
#include "zip/ZipLocate.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

namespace helvantine
{

namespace
{

/// Opens the bytes of an archive through libzip, which by itself refuses one behind other bytes. Takes
/// the file over; null, with the reason in `error`, if they are damaged.
zip* openExtent(int file, const ZipExtent& extent, zip_error_t& error)
{
    std::FILE* stream = fdopen(file, "rb");
    if (!stream) {
        zip_error_set(&error, ZIP_ER_OPEN, errno);
        close(file);
        return nullptr;
    }
    zip_source_t* source =
        zip_source_filep_create(stream, extent.start, static_cast<zip_int64_t>(extent.size), &error);
    if (!source) {
        std::fclose(stream);
        return nullptr;
    }
    zip* archive = zip_open_from_source(source, ZIP_RDONLY, &error);
    if (!archive)
        zip_source_free(source);
    return archive;
}

/// Null, with a report, if the file holds no archive.
zip* openLocated(const char* path)
{
    struct stat status;
    if (lstat(path, &status) == 0 && S_ISLNK(status.st_mode)) {
        reportProblem("zip", formatString("'%s' is a link, which isn't followed", path));
        return nullptr;
    }
    std::uint64_t fileSize = 0;
    const int file = openRegularFile(path, fileSize, O_RDONLY | O_NOFOLLOW, "open");
    if (file < 0)
        return nullptr;
    zip_error_t error;
    zip_error_init(&error);
    zip* archive = nullptr;
    const std::optional<ZipExtent> extent = locateArchive(file, fileSize);
    if (extent)
        archive = openExtent(file, *extent, error);
    else
        close(file);
    if (!archive)
        reportProblem("zip", formatString("'%s' with %" PRIu64 " bytes is no archive: %s", path, fileSize,
                                          extent ? zip_error_strerror(&error) : "no end record"));
    zip_error_fini(&error);
    return archive;
}

bool isSpecialEntry(zip* archive, zip_uint64_t index)
{
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) != 0)
        return false;
    const mode_t type = attributes >> 16 & S_IFMT;
    const bool unixMode = system == ZIP_OPSYS_UNIX || system == ZIP_OPSYS_OS_X;
    return unixMode && type != 0 && type != S_IFREG && type != S_IFDIR;
}

/// True if the name says by itself that it wants to lie elsewhere: it has a drive, a root or a `..`.
bool leavesRoot(const std::string& name)
{
    if (name.empty() || name[0] == '/' || name[0] == '\\' || (name.size() > 1 && name[1] == ':'))
        return true;
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find_first_of("/\\", start), name.size());
        if (name.compare(start, end - start, "..") == 0)
            return true;
        start = end + 1;
    }
    return false;
}

} // namespace

bool isFolderName(const std::string& name)
{
    return !name.empty() && (name.back() == '/' || name.back() == '\\');
}

std::unique_ptr<ZipArchive> ZipArchive::open(const char* path)
{
    zip* archive = path ? openLocated(path) : nullptr;
    if (!archive)
        return nullptr;
    std::unique_ptr<ZipArchive> opened(new ZipArchive(path, archive));
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    if (count < 0 || static_cast<std::uint64_t>(count) > ziplimits::entries) {
        reportProblem("zip", formatString("'%s' has %" PRId64 " entries, at most %" PRIu64 " are read", path,
                                          count, ziplimits::entries));
        return nullptr;
    }
    opened->readEntries();
    return opened;
}

ZipArchive::ZipArchive(const char* path, zip* archive) : m_path(path), m_archive(archive) {}

ZipArchive::~ZipArchive()
{
    zip_discard(m_archive);
}

void ZipArchive::readEntries()
{
    const auto count = static_cast<std::uint64_t>(zip_get_num_entries(m_archive, 0));
    m_entries.resize(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        Entry& entry = m_entries[i];
        zip_stat_t status;
        if (zip_stat_index(m_archive, i, 0, &status) != 0)
            continue; // stays without a name, which is refused
        if ((status.valid & (ZIP_STAT_NAME | ZIP_STAT_SIZE | ZIP_STAT_COMP_SIZE)) !=
            (ZIP_STAT_NAME | ZIP_STAT_SIZE | ZIP_STAT_COMP_SIZE))
            continue;
        entry = {status.name, status.size, status.comp_size, isSpecialEntry(m_archive, i)};
        if (!isFolderName(entry.name))
            (getRefusal(i).empty() ? m_names : m_refused)[makeRootedName(entry.name.c_str())] = i;
    }
}

std::string ZipArchive::getRefusal(std::uint64_t index) const
{
    const Entry& entry = m_entries[index];
    const auto where = [&] { return formatString("'%s' in '%s'", entry.name.c_str(), m_path.c_str()); };
    if (leavesRoot(entry.name))
        return where() + " would leave its folder";
    if (entry.isSpecial)
        return where() + " is a link or special file";
    if (ziplimits::isBomb(entry.size, entry.packedSize))
        return where() + formatString(" unpacks %" PRIu64 " bytes to %" PRIu64 ", more than %" PRIu64 " to 1",
                                      entry.packedSize, entry.size, ziplimits::ratio);
    if (entry.size > ziplimits::totalBytes)
        return where() + formatString(" has %" PRIu64 " bytes, at most %" PRIu64 " are read", entry.size,
                                      ziplimits::totalBytes);
    return {};
}

std::string ZipArchive::getRefusal(const std::string& rootedName) const
{
    const auto found = m_names.contains(rootedName) ? m_refused.end() : m_refused.find(rootedName);
    return found != m_refused.end() ? getRefusal(found->second) : std::string();
}

std::optional<std::uint64_t> ZipArchive::find(const std::string& rootedName) const
{
    const auto found = m_names.find(rootedName);
    return found != m_names.end() ? std::optional(found->second) : std::nullopt;
}

bool ZipArchive::read(std::uint64_t index, Buffer& target)
{
    const Entry& entry = m_entries[index];
    zip_file_t* file = zip_fopen_index(m_archive, index, 0);
    std::uint64_t done = 0;
    bool complete = file != nullptr;
    while (complete) {
        unsigned char bytes[65536];
        const zip_int64_t got = zip_fread(file, bytes, sizeof(bytes));
        if (got == 0)
            break;
        done += got > 0 ? static_cast<std::uint64_t>(got) : 0;
        complete = got > 0 && done <= entry.size &&
                   target.write(bytes, static_cast<std::size_t>(got)) == static_cast<std::size_t>(got);
    }
    if (file)
        complete = zip_fclose(file) == 0 && complete && done == entry.size;
    if (!complete)
        reportProblem("zip", formatString("can't read '%s' in '%s': %" PRIu64 " of %" PRIu64 " bytes",
                                          entry.name.c_str(), m_path.c_str(), done, entry.size));
    return complete;
}

} // namespace helvantine
