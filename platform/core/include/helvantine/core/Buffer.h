// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace helvantine
{

/// A source or sink of bytes with one position for reading and writing.
///
/// The destructor closes it; whoever got the pointer from an `openFile` or `createFile` deletes it.
class HELVANTINE_CORE_API Buffer
{
public:
    Buffer() = default;
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    virtual ~Buffer();

    /// Reads at the position and moves it. Returns the bytes read: fewer than asked at the end.
    virtual std::size_t read(void* data, std::size_t size) = 0;

    /// Writes at the position, over what stands there, and grows at the end. Returns the bytes
    /// written: fewer than asked when the medium is full or not writable.
    virtual std::size_t write(const void* data, std::size_t size) = 0;

    /// Moves the position, counted from the start. False beyond the end; the position then stays.
    virtual bool seek(std::uint64_t offset) = 0;

    virtual std::uint64_t tell() const = 0;
    virtual std::uint64_t getSize() const = 0;

    /// Hands what was written to the operating system. False if any write since creation was lost.
    virtual bool flush();

    /// The path it was opened by; empty for memory. Never null, valid as long as the buffer.
    const char* getName() const { return m_name.c_str(); }
    void setName(const char* name);

private:
    std::string m_name;
};

/// Reads from the position to the end into `bytes`. False, with `bytes` empty, if more than `limit`
/// bytes are left or the source yields fewer than its size promises.
HELVANTINE_CORE_API bool readRemaining(Buffer& buffer, std::vector<unsigned char>& bytes,
                                       std::uint64_t limit = std::uint64_t(1) << 32);

} // namespace helvantine
