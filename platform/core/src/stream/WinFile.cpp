// SPDX-License-Identifier: MIT
#include <helvantine/core/WinFile.h>

#include "system/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace helvantine
{

namespace
{

constexpr std::size_t blockBytes = 65536;

} // namespace

WinFile::WinFile() = default;

WinFile::~WinFile()
{
    close();
}

bool WinFile::create(const char* path)
{
    if (!openHandle("create", path, O_RDWR | O_CREAT))
        return false;
    if (ftruncate(m_handle, 0) != 0) {
        reportSystemError("empty", path, errno);
        close();
        return false;
    }
    m_size = 0;
    m_writable = true;
    return true;
}

bool WinFile::open(const char* path)
{
    return openHandle("open", path, O_RDONLY);
}

bool WinFile::openHandle(const char* action, const char* path, int flags)
{
    close();
    if (!path)
        return false;
    m_handle = openRegularFile(path, m_size, flags, action);
    if (m_handle < 0)
        return false;
    setName(path);
    return true;
}

bool WinFile::close()
{
    if (m_handle < 0)
        return true;
    bool kept = WinFile::flush();
    if (::close(m_handle) != 0 && m_writable)
        kept = false;
    m_handle = -1;
    m_writable = m_lostWrite = false;
    m_position = m_size = m_blockStart = 0;
    m_blockSize = 0;
    m_block.reset();
    return kept;
}

std::size_t WinFile::read(void* data, std::size_t size)
{
    auto* target = static_cast<unsigned char*>(data);
    const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, m_size - m_position));
    std::size_t done = 0;
    while (done < wanted) {
        std::size_t taken = readFromBlock(target + done, wanted - done);
        if (taken == 0 && !flushBlock())
            break;
        if (taken == 0 && wanted - done >= blockBytes) {
            taken = readDirectly(target + done, wanted - done, m_position);
            m_position += taken;
        } else if (taken == 0) {
            fillBlock();
            taken = readFromBlock(target + done, wanted - done);
        }
        if (taken == 0)
            break;
        done += taken;
    }
    return done;
}

std::size_t WinFile::write(const void* data, std::size_t size)
{
    if (!m_writable || m_lostWrite || size == 0)
        return 0;
    const bool appends = m_blockDirty && m_position == m_blockStart + m_blockSize;
    if ((!appends || size > blockBytes - m_blockSize) && !flushBlock())
        return 0;
    if (size >= blockBytes) {
        m_blockSize = 0;
        size = writeDirectly(static_cast<const unsigned char*>(data), size, m_position);
    } else {
        appendToBlock(data, size);
    }
    m_position += size;
    m_size = std::max(m_size, m_position);
    return size;
}

bool WinFile::seek(std::uint64_t offset)
{
    if (m_handle < 0 || offset > m_size)
        return false;
    m_position = offset;
    return true;
}

bool WinFile::flush()
{
    return flushBlock() && !m_lostWrite;
}

std::size_t WinFile::readFromBlock(unsigned char* data, std::size_t size)
{
    if (m_position < m_blockStart || m_position >= m_blockStart + m_blockSize)
        return 0;
    const std::size_t offset = static_cast<std::size_t>(m_position - m_blockStart);
    size = std::min(size, m_blockSize - offset);
    std::memcpy(data, m_block.get() + offset, size);
    m_position += size;
    return size;
}

void WinFile::fillBlock()
{
    if (!m_block)
        m_block = std::make_unique_for_overwrite<unsigned char[]>(blockBytes);
    m_blockStart = m_position;
    m_blockSize = readDirectly(m_block.get(), blockBytes, m_position);
}

void WinFile::appendToBlock(const void* data, std::size_t size)
{
    if (!m_block)
        m_block = std::make_unique_for_overwrite<unsigned char[]>(blockBytes);
    if (!m_blockDirty) {
        m_blockStart = m_position;
        m_blockSize = 0;
        m_blockDirty = true;
    }
    std::memcpy(m_block.get() + m_blockSize, data, size);
    m_blockSize += size;
}

bool WinFile::flushBlock()
{
    if (!m_blockDirty)
        return true;
    m_blockDirty = false;
    return writeDirectly(m_block.get(), m_blockSize, m_blockStart) == m_blockSize;
}

std::size_t WinFile::readDirectly(unsigned char* data, std::size_t size, std::uint64_t offset) const
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = pread(m_handle, data + done, size - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

std::size_t WinFile::writeDirectly(const unsigned char* data, std::size_t size, std::uint64_t offset)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t put = pwrite(m_handle, data + done, size - done, static_cast<off_t>(offset + done));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0) {
            m_lostWrite = true;
            reportSystemError("write to", getName(), put < 0 ? errno : ENOSPC);
            break;
        }
        done += static_cast<std::size_t>(put);
    }
    return done;
}

} // namespace helvantine
