// SPDX-License-Identifier: MIT
// A picture in memory, of the one kind that the target is built for: HELVANTINE_IMAGE_KIND.
#include "image/ImageDecoder.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

using namespace helvantine;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::uint64_t mostPixels = 1 << 20; // larger ones are no different, only slower
    ImageSource source({data, size});
    std::string error;
    const std::unique_ptr<ImageDecoder> decoder = openImage(source, error);
    if (!decoder && error.empty())
        std::abort(); // a refusal has words
    if (!decoder || std::strcmp(decoder->getHeader().kind, HELVANTINE_IMAGE_KIND) != 0 ||
        std::uint64_t(decoder->getHeader().width) * decoder->getHeader().height > mostPixels)
        return 0;
    const auto image = decodeImage(*decoder, error);
    if (image.has_value() != error.empty())
        std::abort();
    std::uint64_t sum = 0; // looks at every byte, so that the memory sanitizer does
    for (std::size_t i = 0; image && i < image->bytes.size(); ++i)
        sum += image->bytes[i];
    if (sum == 0x5eed)
        error.clear();

    const std::unique_ptr<ImageDecoder> again = openImage(source, error);
    if (!again || decodeImage(*again, nullptr, error) != image.has_value())
        std::abort(); // a look without pixels comes to the same
    return 0;
}
