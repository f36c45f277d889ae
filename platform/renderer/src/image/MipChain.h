// SPDX-License-Identifier: MIT
#pragma once

#include "image/ImageData.h"

namespace helvantine
{

/// Fills mips 1 and up of every face from mip 0 by averaging the area that each pixel covers, also where a
/// side is odd. The image must have four bytes a pixel; the bytes are averaged as they are.
void generateMips(ImageData& image);

} // namespace helvantine
