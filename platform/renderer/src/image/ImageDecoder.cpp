// SPDX-License-Identifier: MIT
#include "image/ImageDecoder.h"

namespace helvantine
{

std::optional<ImageData> decodeImage(std::span<const uint8_t> file, std::string& error)
{
    return isDds(file) ? decodeDds(file, error) : decodePicture(file, error);
}

} // namespace helvantine
