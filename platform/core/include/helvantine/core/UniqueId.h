// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace helvantine
{

/// Sixteen bytes in GUID layout that identify a class or an object. All zero, the default, means none.
struct UniqueId
{
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::uint8_t data4[8] = {};

    bool isZero() const { return *this == UniqueId(); }

    bool operator==(const UniqueId& other) const { return std::memcmp(this, &other, sizeof(UniqueId)) == 0; }
    /// The order of the sixteen bytes in memory, unsigned, first to last.
    bool operator<(const UniqueId& other) const { return std::memcmp(this, &other, sizeof(UniqueId)) < 0; }
};
static_assert(sizeof(UniqueId) == 16);

/// Reads `XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX` in either letter case. Any other text, null included, gives
/// the zero id. May be called from static initialisers, like uniqueIdToString.
HELVANTINE_CORE_API UniqueId stringToUniqueId(const char* text);

/// The same form in upper case.
HELVANTINE_CORE_API std::string uniqueIdToString(const UniqueId& id);
/// Fills `text`, terminator included, without allocating.
HELVANTINE_CORE_API void uniqueIdToString(const UniqueId& id, char (&text)[37]);

/// A fresh id from the operating system's randomness, never all zero.
HELVANTINE_CORE_API UniqueId generateUniqueId();

} // namespace helvantine
