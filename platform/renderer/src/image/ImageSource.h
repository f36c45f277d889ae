// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace helvantine
{

class Buffer;

/// The bytes of an image file, read where they lie: all in memory, or part by part from an open file.
class ImageSource
{
public:
    explicit ImageSource(std::span<const uint8_t> bytes); ///< borrowed
    explicit ImageSource(Buffer& buffer);                 ///< borrowed

    uint64_t getSize() const { return m_size; }

    /// The bytes at offset, until the next call. Fewer than asked, at last none, where the file ends or can't be read.
    std::span<const uint8_t> view(uint64_t offset, size_t size);

    /// Little-endian numbers; 0 where the file has no such bytes.
    uint32_t readByte(uint64_t offset);
    uint32_t readShort(uint64_t offset);
    uint32_t readLong(uint64_t offset);

    bool startsWith(std::span<const uint8_t> magic);

private:
    void moveWindow(uint64_t offset, size_t size);
    uint32_t readNumber(uint64_t offset, size_t size);

    std::span<const uint8_t> m_bytes; ///< all of them, or those of the window
    uint64_t m_size = 0;
    Buffer* m_buffer = nullptr; ///< null: all in memory
    uint64_t m_windowStart = 0;
    std::vector<uint8_t> m_window;
};

} // namespace helvantine
