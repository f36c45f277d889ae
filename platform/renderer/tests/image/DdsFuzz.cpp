// SPDX-License-Identifier: MIT
// A dds picture in memory.
#include "image/ImageDecoder.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4 || std::memcmp(data, "DDS ", 4) != 0)
        return 0; // never comes here
    std::string error;
    const auto image = helvantine::decodeImage({data, size}, error);
    if (!image && error.empty())
        std::abort(); // a refusal has words
    return 0;
}
