// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

struct zip_source;

namespace helvantine
{

class Buffer;

/// The bytes of entries that wait for their archive to be written, in a file on disk, so that an archive may be larger than memory and its sources may change or vanish meanwhile.
class ZipSpool
{
public:
    ZipSpool() = default;
    ZipSpool(const ZipSpool&) = delete;
    ZipSpool& operator=(const ZipSpool&) = delete;
    ~ZipSpool();

    /// Makes the file, which must not be there, and which its owner removes. False, with a report, if it can't.
    bool open(const std::string& path);

    /// Takes the bytes between the buffer's position and its end. False, with a report, if they can't
    /// be read or stored; the spool is then as before.
    bool take(Buffer& buffer);

    /// The bytes taken last, as a source of libzip; the spool must outlive it.
    zip_source* makeSource() const;

    std::uint64_t getSize() const { return m_size; }

private:
    int m_file = -1;
    std::uint64_t m_lastStart = 0;
    std::uint64_t m_size = 0;
};

} // namespace helvantine
