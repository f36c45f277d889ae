// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace helvantine
{

/// 128 bits that stand for a content: equal on every machine and in every version of this library.
/// Good against accidents, not against forgery.
struct Hash128
{
    uint64_t low = 0;
    uint64_t high = 0;

    auto operator<=>(const Hash128&) const = default;

    /// 32 lower-case hexadecimal digits, high half first.
    std::string toString() const;
};

Hash128 hashBytes(const void* bytes, size_t size);

/// Collects parts whose borders count: ("ab", "c") and ("a", "bc") differ.
class Hasher128
{
public:
    void add(std::string_view text);
    void add(uint32_t number);
    Hash128 finish() const;

private:
    std::string m_bytes;
};

} // namespace helvantine
