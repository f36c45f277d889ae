// SPDX-License-Identifier: MIT
// A preprocessed HLSL text.
#include "shader/hlsl/Front.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace helvantine;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const hlsl::Result result = hlsl::normalise(text, "fuzz.hlsl", "PS", ShaderStage::Pixel);
    const bool isDecided = !result.text.empty() || !result.errors.empty() || !result.hasEntry;
    if (!isDecided || result.text.size() > hlsl::maxNormalisedSize)
        std::abort();
    return 0;
}
