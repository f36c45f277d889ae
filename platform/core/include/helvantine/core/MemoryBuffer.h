// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Buffer.h>

namespace helvantine
{

/// A growing block of memory, readable, writable and seekable.
class HELVANTINE_CORE_API MemoryBuffer : public Buffer
{
public:
    /// Capacity at first, and the least step by which it grows; once the block is larger than the
    /// step it doubles instead. Numbers below 1 count as 1.
    explicit MemoryBuffer(int capacity = 4096, int growth = 4096);

    /// Takes over finished bytes; the position is at their start.
    explicit MemoryBuffer(std::vector<unsigned char> bytes);

    std::size_t read(void* data, std::size_t size) override;
    std::size_t write(const void* data, std::size_t size) override;
    bool seek(std::uint64_t offset) override;
    std::uint64_t tell() const override { return m_position; }
    std::uint64_t getSize() const override { return m_bytes.size(); }

    /// The bytes from the start, valid until the next write. Not null, even when there are none.
    const unsigned char* getData() const;

private:
    std::vector<unsigned char> m_bytes;
    std::size_t m_position = 0;
    std::size_t m_growth;
};

} // namespace helvantine
