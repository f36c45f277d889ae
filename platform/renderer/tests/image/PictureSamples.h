// SPDX-License-Identifier: MIT
#pragma once

#include "LibraryFiles.h"

namespace helvantine::test
{

/// A small file of every format and kind, each of whose bytes matters.
std::vector<Bytes> makeSamples();

/// The file with some of its first bytes changed; the same seed gives the same.
Bytes damage(const Bytes& file, unsigned seed);

/// Of one colour, in runs as long as can be, from below.
Bytes makeRunBmp(unsigned width, unsigned height);
Bytes makeRunTga(unsigned width, unsigned height);

} // namespace helvantine::test
