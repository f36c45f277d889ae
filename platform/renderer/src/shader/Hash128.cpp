// SPDX-License-Identifier: MIT
#include "shader/Hash128.h"

#include <bit>

namespace helvantine
{

namespace
{

constexpr uint64_t factorA = 0x87c37b91114253d5u;
constexpr uint64_t factorB = 0x4cf5ad432745937fu;

/// Little-endian on every machine; bytes past the end count as 0.
uint64_t readWord(const unsigned char* bytes, size_t left)
{
    uint64_t word = 0;
    for (size_t i = 0; i < 8 && i < left; ++i)
        word |= uint64_t(bytes[i]) << (8 * i);
    return word;
}

uint64_t spread(uint64_t word)
{
    word = (word ^ (word >> 33)) * 0xff51afd7ed558ccdu;
    word = (word ^ (word >> 33)) * 0xc4ceb9fe1a85ec53u;
    return word ^ (word >> 33);
}

} // namespace

Hash128 hashBytes(const void* bytes, size_t size)
{
    // The 128-bit form of MurmurHash3.
    const auto* at = static_cast<const unsigned char*>(bytes);
    uint64_t low = 0;
    uint64_t high = 0;
    for (size_t done = 0; done < size; done += 16) {
        size_t left = size - done;
        uint64_t first = readWord(at + done, left);
        uint64_t second = left > 8 ? readWord(at + done + 8, left - 8) : 0;
        low ^= std::rotl(first * factorA, 31) * factorB;
        high ^= std::rotl(second * factorB, 33) * factorA;
        if (left < 16)
            break;
        low = (std::rotl(low, 27) + high) * 5 + 0x52dce729u;
        high = (std::rotl(high, 31) + low) * 5 + 0x38495ab5u;
    }
    low ^= size;
    high ^= size;
    low += high;
    high += low;
    low = spread(low);
    high = spread(high);
    low += high;
    high += low;
    return {low, high};
}

std::string Hash128::toString() const
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (uint64_t half : {high, low})
        for (int shift = 60; shift >= 0; shift -= 4)
            text += digits[(half >> shift) & 15];
    return text;
}

void Hasher128::add(std::string_view text)
{
    add(uint32_t(text.size()));
    m_bytes.append(text);
}

void Hasher128::add(uint32_t number)
{
    for (int shift = 0; shift < 32; shift += 8)
        m_bytes += char(number >> shift & 255);
}

Hash128 Hasher128::finish() const
{
    return hashBytes(m_bytes.data(), m_bytes.size());
}

} // namespace helvantine
