// SPDX-License-Identifier: MIT
#include "zip/ZipLocate.h"

#include <algorithm>
#include <cstddef>
#include <unistd.h>
#include <vector>

namespace helvantine
{

namespace
{

constexpr std::uint32_t directorySignature = 0x02014b50;
constexpr std::uint32_t endSignature = 0x06054b50;
constexpr std::uint32_t largeEndSignature = 0x06064b50;
constexpr std::uint32_t largeLocatorSignature = 0x07064b50;
constexpr std::uint64_t endBytes = 22;
constexpr std::uint64_t largeEndBytes = 56;
constexpr std::uint64_t largeLocatorBytes = 20;
constexpr std::uint64_t commentLimit = 65535;

std::uint64_t readNumber(const unsigned char* bytes, int size)
{
    std::uint64_t value = 0;
    for (int i = size; i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

/// Fills `bytes` from the file; false if it holds fewer.
bool readAt(int file, std::uint64_t offset, unsigned char* bytes, std::size_t size)
{
    while (size != 0) {
        const ssize_t got = pread(file, bytes, size, static_cast<off_t>(offset));
        if (got <= 0)
            return false;
        bytes += got;
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

/// The directory as an end record tells it; `end` is where the directory must end.
struct Directory
{
    std::uint64_t end = 0;
    std::uint64_t size = 0;
    std::uint64_t offset = 0;
};

/// Archives beyond 32 bits have a second end record, right in front of its locator and the first one.
bool readLargeEnd(int file, std::uint64_t endOffset, Directory& directory)
{
    unsigned char bytes[largeEndBytes + largeLocatorBytes];
    if (endOffset < sizeof(bytes) || !readAt(file, endOffset - sizeof(bytes), bytes, sizeof(bytes)))
        return false;
    if (readNumber(bytes, 4) != largeEndSignature ||
        readNumber(bytes + largeEndBytes, 4) != largeLocatorSignature)
        return false;
    directory = {endOffset - sizeof(bytes), readNumber(bytes + 40, 8), readNumber(bytes + 48, 8)};
    return true;
}

/// Where the archive starts if `record`, found at `endOffset`, is its end record.
std::optional<std::uint64_t> findStart(int file, std::uint64_t endOffset, const unsigned char* record)
{
    Directory directory{endOffset, readNumber(record + 12, 4), readNumber(record + 16, 4)};
    const bool large = directory.size == 0xFFFFFFFF || directory.offset == 0xFFFFFFFF ||
                       readNumber(record + 10, 2) == 0xFFFF;
    if (large)
        readLargeEnd(file, endOffset, directory);
    if (directory.size > directory.end || directory.offset > directory.end - directory.size)
        return std::nullopt;
    unsigned char signature[4];
    const std::uint64_t directoryStart = directory.end - directory.size;
    const bool plausible = directory.size == 0 || (readAt(file, directoryStart, signature, 4) &&
                                                   readNumber(signature, 4) == directorySignature);
    return plausible ? std::optional(directoryStart - directory.offset) : std::nullopt;
}

} // namespace

std::optional<ZipExtent> locateArchive(int file, std::uint64_t fileSize)
{
    std::vector<unsigned char> tail(std::min(fileSize, endBytes + commentLimit));
    const std::uint64_t tailStart = fileSize - tail.size();
    if (tail.size() < endBytes || !readAt(file, tailStart, tail.data(), tail.size()))
        return std::nullopt;
    for (std::size_t i = tail.size() - endBytes + 1; i-- > 0;) {
        const unsigned char* record = tail.data() + i;
        if (readNumber(record, 4) != endSignature)
            continue;
        const std::uint64_t archiveEnd = tailStart + i + endBytes + readNumber(record + 20, 2);
        const auto start = archiveEnd <= fileSize ? findStart(file, tailStart + i, record) : std::nullopt;
        if (start)
            return ZipExtent{*start, archiveEnd - *start};
    }
    return std::nullopt;
}

} // namespace helvantine
