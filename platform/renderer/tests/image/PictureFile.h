// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace helvantine::test
{

using Bytes = std::vector<uint8_t>;

/// width by height RGBA pixels, all different in every channel as far as bytes allow.
Bytes makePattern(unsigned width, unsigned height);

/// Files of RGBA pixels, rows from the top.
Bytes encodePng(unsigned width, unsigned height, const Bytes& pixels);
Bytes encodeBmp(unsigned width, unsigned height, const Bytes& pixels);
Bytes encodeTga(unsigned width, unsigned height, const Bytes& pixels); ///< run-length coded
Bytes encodeJpg(unsigned width, unsigned height, const Bytes& pixels); ///< loses alpha, and a little colour

} // namespace helvantine::test
