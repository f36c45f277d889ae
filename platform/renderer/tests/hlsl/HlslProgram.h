// SPDX-License-Identifier: MIT
#pragma once

#include "HlslRows.h"

#include <span>
#include <string>
#include <vector>

namespace helvantine::test
{

/// How the rows of a program are evaluated.
struct HlslMode
{
    bool inVertexStage = false; ///< one point for each result; else one pixel of a quad
    bool asConstants = false;   ///< arguments are literals; else they come from a constant buffer
};

/// A text that evaluates many rows: pixel n of a target `hlslProgramWidth` wide holds one row's vector, or one row of
/// its matrix, as bits.
struct HlslProgram
{
    std::string text;                ///< entry points VS and PS
    std::vector<uint32_t> constants; ///< of b0, in both stages
    unsigned pixelCount = 0;
};

inline constexpr unsigned hlslProgramWidth = 16;

/// The rows share their declarations.
HlslProgram makeHlslProgram(std::span<const HlslRow> rows, const HlslMode& mode);

/// The pixels that a row takes.
unsigned countPixels(const HlslRow& row);

} // namespace helvantine::test
