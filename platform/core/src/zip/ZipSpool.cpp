// SPDX-License-Identifier: MIT
#include "zip/ZipSpool.h"

#include "system/RegularFile.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <zip.h>

namespace helvantine
{

namespace
{

/// A stretch of the spool, read by libzip when the archive is written.
struct SpoolPart
{
    int file;
    std::uint64_t start;
    std::uint64_t size;
    std::uint64_t position = 0;
    zip_error_t error{};

    zip_int64_t read(void* data, zip_uint64_t wanted)
    {
        const std::uint64_t asked = std::min<std::uint64_t>(wanted, size - position);
        const ssize_t got = pread(file, data, asked, static_cast<off_t>(start + position));
        if (got < 0 || (got == 0 && asked != 0)) {
            zip_error_set(&error, ZIP_ER_READ, errno);
            return -1;
        }
        position += static_cast<std::uint64_t>(got);
        return got;
    }

    zip_int64_t describe(void* data) const
    {
        auto* status = static_cast<zip_stat_t*>(data);
        zip_stat_init(status);
        status->size = size;
        status->valid |= ZIP_STAT_SIZE;
        return sizeof(*status);
    }
};

zip_int64_t handlePart(void* user, void* data, zip_uint64_t length, zip_source_cmd_t command)
{
    auto* part = static_cast<SpoolPart*>(user);
    switch (command) {
    case ZIP_SOURCE_OPEN:
        part->position = 0;
        return 0;
    case ZIP_SOURCE_READ:
        return part->read(data, length);
    case ZIP_SOURCE_CLOSE:
        return 0;
    case ZIP_SOURCE_STAT:
        return part->describe(data);
    case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&part->error, data, length);
    case ZIP_SOURCE_FREE:
        delete part;
        return 0;
    case ZIP_SOURCE_SUPPORTS:
        return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE,
                                              ZIP_SOURCE_STAT, ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, -1);
    default:
        zip_error_set(&part->error, ZIP_ER_OPNOTSUPP, 0);
        return -1;
    }
}

bool writeAt(int file, std::uint64_t offset, const unsigned char* bytes, std::size_t size)
{
    while (size != 0) {
        const ssize_t put = pwrite(file, bytes, size, static_cast<off_t>(offset));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        bytes += put;
        offset += static_cast<std::uint64_t>(put);
        size -= static_cast<std::size_t>(put);
    }
    return true;
}

} // namespace

ZipSpool::~ZipSpool()
{
    if (m_file >= 0)
        close(m_file);
}

bool ZipSpool::open(const std::string& path)
{
    m_file = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (m_file < 0)
        reportSystemError("create", path.c_str(), errno);
    return m_file >= 0;
}

bool ZipSpool::take(Buffer& buffer)
{
    const std::uint64_t wanted = buffer.getSize() - buffer.tell();
    std::uint64_t done = 0;
    while (done < wanted) {
        unsigned char bytes[65536];
        const std::size_t got = buffer.read(bytes, std::min<std::uint64_t>(sizeof(bytes), wanted - done));
        if (got == 0) {
            reportProblem("zip", formatString("'%s' yields %" PRIu64 " of %" PRIu64 " bytes",
                                              buffer.getName(), done, wanted));
            return false;
        }
        if (!writeAt(m_file, m_size + done, bytes, got)) {
            reportSystemError("store entries of", buffer.getName(), errno);
            return false;
        }
        done += got;
    }
    m_lastStart = m_size;
    m_size += done;
    return true;
}

zip_source* ZipSpool::makeSource() const
{
    auto part = std::make_unique<SpoolPart>(SpoolPart{m_file, m_lastStart, m_size - m_lastStart});
    zip_error_init(&part->error);
    zip_source* source = zip_source_function_create(handlePart, part.get(), nullptr);
    if (source)
        static_cast<void>(part.release()); // freed with the source
    return source;
}

} // namespace helvantine
