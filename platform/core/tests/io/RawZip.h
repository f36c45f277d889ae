// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace helvantine::test
{

/// An entry as nobody's archiver would write it: stored bytes under any name, with any claims.
struct RawEntry
{
    std::string name;
    std::string bytes;
    std::uint32_t mode = 0;        ///< Unix mode
    std::uint32_t claimedSize = 0; ///< 0: the true one
};

inline void appendNumber(std::string& out, std::uint64_t value, int size)
{
    for (int i = 0; i < size; ++i)
        out += static_cast<char>(value >> (8 * i));
}

inline std::uint32_t checkSum(const std::string& bytes)
{
    std::uint32_t sum = 0xFFFFFFFF;
    for (const char c : bytes) {
        sum ^= static_cast<unsigned char>(c);
        for (int i = 0; i < 8; ++i)
            sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320 : 0);
    }
    return ~sum;
}

/// The fields that a local header and a directory entry share.
inline void appendCommonFields(std::string& out, const RawEntry& entry)
{
    const std::size_t size = entry.claimedSize ? entry.claimedSize : entry.bytes.size();
    appendNumber(out, 20, 2);                        // version needed
    appendNumber(out, 0x800, 2);                     // names are UTF-8
    appendNumber(out, entry.claimedSize ? 8 : 0, 2); // a false claim needs a method that packs
    appendNumber(out, 0, 2);                         // time
    appendNumber(out, 33, 2);                        // date
    appendNumber(out, checkSum(entry.bytes), 4);
    appendNumber(out, entry.bytes.size(), 4);
    appendNumber(out, size, 4);
    appendNumber(out, entry.name.size(), 2);
    appendNumber(out, 0, 2); // extra field
}

inline std::string makeRawZip(const std::vector<RawEntry>& entries)
{
    std::string zip, directory;
    for (const RawEntry& entry : entries) {
        appendNumber(directory, 0x02014b50, 4);
        appendNumber(directory, 3 << 8 | 20, 2); // made on Unix
        appendCommonFields(directory, entry);
        appendNumber(directory, 0, 6); // comment, disk, internal attributes
        appendNumber(directory, entry.mode << 16, 4);
        appendNumber(directory, zip.size(), 4);
        directory += entry.name;
        appendNumber(zip, 0x04034b50, 4);
        appendCommonFields(zip, entry);
        zip += entry.name + entry.bytes;
    }
    const std::size_t start = zip.size();
    zip += directory;
    appendNumber(zip, 0x06054b50, 4);
    appendNumber(zip, 0, 4); // disks
    appendNumber(zip, entries.size(), 2);
    appendNumber(zip, entries.size(), 2);
    appendNumber(zip, directory.size(), 4);
    appendNumber(zip, start, 4);
    appendNumber(zip, 0, 2); // comment
    return zip;
}

} // namespace helvantine::test
