// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace helvantine::test
{

/// A number, vector or matrix of HLSL: floats and integers as their bits, bools as 0 and 1.
struct HlslValue
{
    std::string scalar = "float"; ///< float, int, uint or bool
    unsigned rows = 1;            ///< of a matrix
    unsigned columns = 1;         ///< components of a vector
    bool isMatrix = false;
    std::vector<uint32_t> bits; ///< row by row

    std::string type() const;    ///< "float2x3"
    std::string literal() const; ///< as a constant of a text, exact to the bit
    std::string show() const;    ///< for people: "float2(1.5, nan)"
};

/// Reads "1.5", "float2(1, nan)", "int(-5)", "float2x2(1, 0, 0, 1)"; a number is decimal, inf, -inf, nan, true, false
/// or, with 0x before it, the bits. False if the text is none of these.
bool readHlslValue(const std::string& text, HlslValue& value);

/// One component as people read it.
std::string showHlslBits(const std::string& scalar, uint32_t bits);

} // namespace helvantine::test
