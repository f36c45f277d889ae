// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageData.h"

#include <optional>
#include <span>
#include <string>

namespace helvantine
{

/// Decodes png, bmp, tga or jpg into 8-bit RGBA with a full mip chain and without colour conversion, dds as
/// it is stored. The content tells the format, not a name.
///
/// The bytes may be hostile: every size is checked against what is there before memory is asked for. Nothing
/// on failure, with the reason in error.
std::optional<ImageData> decodeImage(std::span<const uint8_t> file, std::string& error);

/// The part of decodeImage for png, bmp, tga and jpg.
std::optional<ImageData> decodePicture(std::span<const uint8_t> file, std::string& error);

/// True for a file that begins as dds files do.
bool isDds(std::span<const uint8_t> file);

/// The part of decodeImage for dds.
std::optional<ImageData> decodeDds(std::span<const uint8_t> file, std::string& error);

} // namespace helvantine
