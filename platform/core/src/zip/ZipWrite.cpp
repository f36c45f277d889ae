// SPDX-License-Identifier: MIT
#include <helvantine/core/ZipWrite.h>

#include "system/RegularFile.h"
#include "system/WorkFolder.h"
#include "zip/ZipArchive.h"
#include "zip/ZipSpool.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/WinFile.h>

#include <cerrno>
#include <cinttypes>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <zip.h>

namespace helvantine
{

namespace
{

constexpr zip_uint16_t fixedDate = 1 << 5 | 1; // 1 January 1980, the first day that an archive knows
constexpr zip_uint16_t fixedTime = 0;
constexpr zip_uint32_t fixedAttributes = 0100644u << 16;
constexpr zip_uint32_t compressionLevel = 6;

/// An archive being written beside its target. Destroyed before `finish`, it leaves no trace.
class ZipWriter
{
public:
    explicit ZipWriter(const char* target) : m_target(target) {}
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;
    ~ZipWriter();

    bool open(bool createNew);
    bool add(const std::string& name, Buffer& buffer);
    void setIncomplete() { m_incomplete = true; } ///< an entry is missing: it won't finish
    bool isComplete() const { return !m_incomplete; }
    std::string getScratchPath(const char* name) const { return m_folder.file(name); }
    bool finish();

private:
    bool openArchive(int flags);
    void readNames();
    bool addSource(const std::string& name);
    bool writeArchive();
    bool writeEmptyArchive();
    bool unpackBombs();
    bool putInPlace();
    bool fail(const char* action);

    std::string m_target;
    WorkFolder m_folder; ///< beside the target, on the same disk
    std::string m_neighbour;
    ZipSpool m_spool;
    zip* m_archive = nullptr;
    std::set<std::string> m_names;
    bool m_incomplete = false;
};

ZipWriter::~ZipWriter()
{
    if (m_archive)
        zip_discard(m_archive);
}

bool ZipWriter::open(bool createNew)
{
    if (!m_folder.open(getPath(m_target.c_str())) || !m_spool.open(m_folder.file("spool")))
        return false;
    m_neighbour = m_folder.file("archive");
    const bool keepsEntries = !createNew && getFileStamp(m_target.c_str()).exists;
    if (keepsEntries && !copyFile(m_target.c_str(), m_neighbour.c_str(), true))
        return false;
    if (!openArchive(keepsEntries ? 0 : ZIP_CREATE | ZIP_TRUNCATE))
        return false;
    readNames();
    return true;
}

bool ZipWriter::openArchive(int flags)
{
    int code = 0;
    m_archive = zip_open(m_neighbour.c_str(), flags, &code);
    if (m_archive)
        return true;
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    reportProblem("zip", formatString("can't open '%s': %s", m_target.c_str(), zip_error_strerror(&error)));
    zip_error_fini(&error);
    return false;
}

void ZipWriter::readNames()
{
    const zip_int64_t count = zip_get_num_entries(m_archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* name = zip_get_name(m_archive, static_cast<zip_uint64_t>(i), 0);
        m_names.insert(makeRootedName(name));
    }
}

bool ZipWriter::fail(const char* action)
{
    reportProblem("zip",
                  formatString("can't %s '%s': %s", action, m_target.c_str(), zip_strerror(m_archive)));
    return false;
}

bool ZipWriter::add(const std::string& name, Buffer& buffer)
{
    if (name.empty() || m_names.contains(name)) {
        reportProblem("zip",
                      formatString("name '%s' is %s", name.c_str(), name.empty() ? "empty" : "in already"));
        return false;
    }
    const std::uint64_t size = buffer.getSize() - buffer.tell();
    if (m_names.size() == ziplimits::entries || size > ziplimits::totalBytes - m_spool.getSize()) {
        reportProblem("zip", formatString("'%s' with %" PRIu64 " bytes is too much for '%s': at most %" PRIu64
                                          " entries and %" PRIu64 " bytes can be read back",
                                          name.c_str(), size, m_target.c_str(), ziplimits::entries,
                                          ziplimits::totalBytes));
        m_incomplete = true;
        return false;
    }
    if (!m_spool.take(buffer) || !addSource(name)) {
        m_incomplete = true; // an archive that silently lacks a file must not replace a whole one
        return false;
    }
    m_names.insert(name);
    return true;
}

bool ZipWriter::addSource(const std::string& name)
{
    zip_source_t* source = m_spool.makeSource();
    if (!source)
        return false;
    const zip_int64_t added = zip_file_add(m_archive, name.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (added < 0) {
        zip_source_free(source);
        return fail("add to");
    }
    const auto index = static_cast<zip_uint64_t>(added);
    const bool described =
        zip_set_file_compression(m_archive, index, ZIP_CM_DEFLATE, compressionLevel) == 0 &&
        zip_file_set_dostime(m_archive, index, fixedTime, fixedDate, 0) == 0 &&
        zip_file_set_external_attributes(m_archive, index, 0, ZIP_OPSYS_UNIX, fixedAttributes) == 0;
    return described || fail("describe an entry of");
}

bool ZipWriter::finish()
{
    if (m_incomplete) {
        reportProblem("zip", formatString("'%s' isn't written, since entries are missing", m_target.c_str()));
        return false;
    }
    return writeArchive() && unpackBombs() && putInPlace();
}

bool ZipWriter::writeArchive()
{
    if (m_names.empty()) // libzip deletes an archive without entries
        return writeEmptyArchive();
    if (zip_close(m_archive) != 0)
        return fail("write");
    m_archive = nullptr;
    return true;
}

bool ZipWriter::writeEmptyArchive()
{
    zip_discard(m_archive);
    m_archive = nullptr;
    constexpr unsigned char endRecord[22] = {'P', 'K', 5, 6};
    WinFile file;
    return file.create(m_neighbour.c_str()) &&
           file.write(endRecord, sizeof(endRecord)) == sizeof(endRecord) && file.close();
}

/// Stores uniform contents as they are: packed so tightly, readers would take them for an attack.
bool ZipWriter::unpackBombs()
{
    if (m_names.empty())
        return true;
    if (!openArchive(0))
        return false;
    const zip_int64_t count = zip_get_num_entries(m_archive, 0);
    for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
        zip_stat_t status;
        if (zip_stat_index(m_archive, i, 0, &status) != 0)
            return fail("check");
        if (ziplimits::isBomb(status.size, status.comp_size) &&
            zip_set_file_compression(m_archive, i, ZIP_CM_STORE, 0) != 0)
            return fail("store an entry of");
    }
    return writeArchive(); // without a change it leaves the file alone
}

bool ZipWriter::putInPlace()
{
    struct stat old;
    if (stat(m_target.c_str(), &old) == 0 && chmod(m_neighbour.c_str(), old.st_mode & 07777) != 0) {
        reportSystemError("set the mode of", m_neighbour.c_str(), errno);
        return false;
    }
    return flushFile(m_neighbour.c_str()) && replaceFile(m_neighbour.c_str(), m_target.c_str());
}

} // namespace

void* ZipWrite::open(const char* path, bool createNew)
{
    if (!path)
        return nullptr;
    auto writer = std::make_unique<ZipWriter>(path);
    return writer->open(createNew) ? writer.release() : nullptr;
}

bool ZipWrite::add(void* handle, const char* name)
{
    if (!handle || !name || !*name) // a resource without a file has an empty name, which is no problem
        return false;
    const std::unique_ptr<Buffer> buffer(openFile(name));
    if (!buffer) {
        reportProblem("zip", formatString("'%s' can't be read", name));
        if (g_fileSystem && g_fileSystem->hasFile(name))
            static_cast<ZipWriter*>(handle)->setIncomplete();
    }
    return buffer && add(handle, name, buffer.get());
}

bool ZipWrite::add(void* handle, const char* name, Buffer* buffer)
{
    return handle && name && buffer && static_cast<ZipWriter*>(handle)->add(makeRootedName(name), *buffer);
}

std::string ZipWrite::getScratchPath(void* handle, const char* name)
{
    return handle && name ? static_cast<ZipWriter*>(handle)->getScratchPath(name) : std::string();
}

bool ZipWrite::isComplete(void* handle)
{
    return handle && static_cast<ZipWriter*>(handle)->isComplete();
}

bool ZipWrite::close(void* handle)
{
    const std::unique_ptr<ZipWriter> writer(static_cast<ZipWriter*>(handle));
    return writer && writer->finish();
}

void ZipWrite::discard(void* handle)
{
    delete static_cast<ZipWriter*>(handle);
}

} // namespace helvantine
