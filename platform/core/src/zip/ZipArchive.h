// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct zip;

namespace helvantine
{

class Buffer;

/// What an archive may cost whoever reads it.
namespace ziplimits
{
constexpr std::uint64_t entries = 65536;
constexpr std::uint64_t totalBytes = std::uint64_t(1) << 32;
constexpr std::uint64_t ratio = 1000;
constexpr std::uint64_t ratioFreeBytes = std::uint64_t(1) << 20;

/// True if the packed size doesn't account for the size.
constexpr bool isBomb(std::uint64_t size, std::uint64_t packedSize)
{
    return size > ratioFreeBytes && size / ratio > packedSize;
}
} // namespace ziplimits

/// An archive open for reading, behind whatever other bytes its file begins with.
///
/// Sizes and names are the archive's own claims. `read` holds the sizes to what they claim;
/// `getRefusal` judges the claims.
class ZipArchive
{
public:
    struct Entry
    {
        std::string name; ///< as it stands in the archive
        std::uint64_t size = 0;
        std::uint64_t packedSize = 0;
        bool isSpecial = false; ///< a link, device or pipe
    };

    /// Null, with a report, if the file is no archive or holds too many entries.
    static std::unique_ptr<ZipArchive> open(const char* path);

    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;
    ~ZipArchive();

    std::uint64_t getCount() const { return m_entries.size(); }
    const Entry& getEntry(std::uint64_t index) const { return m_entries[index]; }

    /// Why an entry must not be used, ready for a report; empty if it may.
    std::string getRefusal(std::uint64_t index) const;

    /// Why the file of this name isn't found by `find` though it is in the archive; empty for any other.
    std::string getRefusal(const std::string& rootedName) const;

    /// The file of this name, in the spelling of `makeRootedName`; of several the last. Folders and
    /// refused entries aren't found.
    std::optional<std::uint64_t> find(const std::string& rootedName) const;

    /// Appends the entry's bytes to `target`. False, with a report, if they are damaged, locked, more
    /// or fewer than claimed, or can't be written.
    bool read(std::uint64_t index, Buffer& target);

private:
    ZipArchive(const char* path, zip* archive);
    void readEntries();

    std::string m_path;
    zip* m_archive;
    std::vector<Entry> m_entries;
    std::map<std::string, std::uint64_t> m_names;
    std::map<std::string, std::uint64_t> m_refused; ///< names of files that must not be used
};

/// True if the name stands for a folder.
bool isFolderName(const std::string& name);

} // namespace helvantine
