// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Buffer.h>

#include <memory>

namespace helvantine
{

/// A file on disk.
///
/// Only regular files are opened; a device, pipe or folder is refused without being touched or
/// waited for. Small reads and writes go through a block in memory, which `seek`, `flush` and the
/// destructor write out: call `flush` to learn whether everything arrived. Failures are reported,
/// except that opening an absent file is none.
class HELVANTINE_CORE_API WinFile : public Buffer
{
public:
    WinFile();
    ~WinFile() override;

    /// Makes or empties a file, for writing and for reading back. Missing folders are not made.
    bool create(const char* path);

    /// Opens an existing file for reading.
    bool open(const char* path);

    /// Writes out and lets go of the file. False if any write was lost. Closed is a valid state:
    /// reads and writes then yield 0 bytes.
    bool close();

    bool isOpen() const { return m_handle >= 0; }

    std::size_t read(void* data, std::size_t size) override;
    std::size_t write(const void* data, std::size_t size) override;
    bool seek(std::uint64_t offset) override;
    std::uint64_t tell() const override { return m_position; }
    std::uint64_t getSize() const override { return m_size; }
    bool flush() override;

private:
    bool openHandle(const char* action, const char* path, int flags);
    std::size_t readFromBlock(unsigned char* data, std::size_t size);
    void fillBlock();
    void appendToBlock(const void* data, std::size_t size);
    bool flushBlock();
    std::size_t readDirectly(unsigned char* data, std::size_t size, std::uint64_t offset) const;
    std::size_t writeDirectly(const unsigned char* data, std::size_t size, std::uint64_t offset);

    int m_handle = -1;
    bool m_writable = false;
    bool m_lostWrite = false;
    std::uint64_t m_position = 0;
    std::uint64_t m_size = 0;

    /// The block holds m_blockSize bytes of the file from m_blockStart on; when m_blockDirty, they
    /// are all still to be written.
    std::unique_ptr<unsigned char[]> m_block;
    std::uint64_t m_blockStart = 0;
    std::size_t m_blockSize = 0;
    bool m_blockDirty = false;
};

} // namespace helvantine
