// SPDX-License-Identifier: MIT
#pragma once

#include "HlslValue.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The table of HLSL expressions and of what Direct3D 11 makes of them.
///
/// A file of rows holds lines of these forms; blank lines and those that begin with # are passed over:
///
///     @source fmod                        where the rows that follow have their results from
///     expression :: arguments :: result [:: tolerance]
///     @begin                              declarations for the rows up to @end follow, up to @rows
///     @rows
///     @end
///
/// An expression that contains "return" is the body of a function. Arguments are `name=value`, separated by blanks.
/// The result is a value, several with " or " between them, or `refused`. Without a tolerance all bits count (any NaN
/// is one); it is `abs N`, `rel N` or `ulp N`, N a number or a power as 2^-21.
///
/// What rows find in registers is told by HlslInputs.
///
/// Sources are pages of the published HLSL reference, by their names, or "functional specification" with the name of
/// a section or an instruction.

namespace helvantine::test
{

struct HlslTolerance
{
    enum class Kind
    {
        Exact,
        Absolute,
        Relative,
        Ulp
    };
    Kind kind = Kind::Exact;
    double amount = 0.0;
};

struct HlslRow
{
    std::string place; ///< "intrinsics.rows:12"
    std::string source;
    std::string expression;
    std::vector<std::pair<std::string, HlslValue>> arguments;
    std::vector<HlslValue> results; ///< any of them; empty: the text is refused
    HlslTolerance tolerance;
    std::shared_ptr<const std::string> declarations; ///< null without

    std::string describe() const;
};

/// All rows of a file, or of the files of a folder. A line that can't be read fails the running test.
std::vector<HlslRow> readHlslRows(const std::string& path);

/// Whether a component is what a row expects.
bool isNear(const std::string& scalar, uint32_t actual, uint32_t expected, const HlslTolerance& tolerance);

} // namespace helvantine::test
