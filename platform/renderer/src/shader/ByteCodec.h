// SPDX-License-Identifier: MIT
#pragma once

#include "shader/Hash128.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// How programs travel, to files and between processes: little-endian, no alignment, each list behind its length.

namespace helvantine
{

constexpr uint32_t maxListLength = 256;

class ByteWriter
{
public:
    std::string bytes;

    void number(uint64_t value, int width = 4)
    {
        for (int i = 0; i < width; ++i)
            bytes += char(value >> (8 * i) & 255);
    }
    void hash(const Hash128& value)
    {
        number(value.low, 8);
        number(value.high, 8);
    }
    void text(const std::string& value)
    {
        number(value.size());
        bytes += value;
    }
    void words(const std::vector<uint32_t>& value)
    {
        number(value.size());
        for (uint32_t word : value)
            number(word);
    }
};

/// Yields zeros once the bytes run out; `failed` then stays true.
class ByteReader
{
public:
    explicit ByteReader(const std::string& bytes, size_t at) : m_bytes(bytes), m_at(at) {}

    bool failed = false;
    bool atEnd() const { return m_at == m_bytes.size(); }

    uint64_t number(int width = 4)
    {
        if (!has(size_t(width)))
            return 0;
        uint64_t value = 0;
        for (int i = 0; i < width; ++i)
            value |= uint64_t(static_cast<unsigned char>(m_bytes[m_at++])) << (8 * i);
        return value;
    }
    Hash128 hash()
    {
        uint64_t low = number(8);
        return {low, number(8)};
    }
    std::string text()
    {
        size_t size = number();
        if (!has(size))
            return {};
        m_at += size;
        return m_bytes.substr(m_at - size, size);
    }
    std::vector<uint32_t> words()
    {
        size_t count = number();
        if (!has(count * sizeof(uint32_t)))
            return {};
        std::vector<uint32_t> value(count);
        for (uint32_t& word : value)
            word = uint32_t(number());
        return value;
    }
    /// The length of a list.
    uint32_t count(uint32_t most = maxListLength)
    {
        auto value = uint32_t(number());
        failed |= value > most;
        return failed ? 0 : value;
    }
    /// A number below `end`.
    uint32_t below(uint32_t end, int width = 1)
    {
        auto value = uint32_t(number(width));
        failed |= value >= end;
        return failed ? 0 : value;
    }

private:
    bool has(size_t size)
    {
        failed |= size > m_bytes.size() - m_at;
        return !failed;
    }

    const std::string& m_bytes;
    size_t m_at = 0;
};

} // namespace helvantine
