// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace helvantine
{

/// Where in a file an archive lies.
struct ZipExtent
{
    std::uint64_t start = 0;
    std::uint64_t size = 0;
};

/// Finds an archive at the end of a file, whatever stands before it: it starts at the end record minus
/// the directory's size minus its offset. Nothing if there is none.
std::optional<ZipExtent> locateArchive(int file, std::uint64_t fileSize);

} // namespace helvantine
