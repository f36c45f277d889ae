// SPDX-License-Identifier: MIT
// A dds picture in memory.
#include "image/ImageDecoder.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (!helvantine::isDds({data, size}))
        return 0; // never comes here
    std::string error;
    const auto image = helvantine::decodeDds({data, size}, error);
    if (!image && error.empty())
        std::abort(); // a refusal has words
    return 0;
}
