// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace helvantine::hlsl
{

/// Where something stands in the author's texts.
struct Position
{
    uint32_t file = 0; ///< index into Tokens::files
    uint32_t line = 1;
};

/// A word of a preprocessed text. The view points into the text.
struct Token
{
    enum class Kind : uint8_t
    {
        End,
        Word,
        Int,
        Float,
        Text, ///< with its quotes
        Symbol
    };

    Kind kind = Kind::End;
    bool isUnsigned = false; ///< an integer with the suffix u, or beyond the range of int
    bool isDouble = false;   ///< a number with the suffix L
    bool packsRows = false;  ///< #pragma pack_matrix(row_major) holds here
    Position at;
    uint32_t integer = 0;
    float number = 0;
    std::string_view text;

    bool is(std::string_view what) const { return text == what && kind != Kind::Text; }
    bool isWord() const { return kind == Kind::Word; }
};

struct Tokens
{
    std::vector<std::string> files; ///< names, the text's own first
    std::vector<Token> tokens;      ///< the last one is an End
    std::vector<std::pair<Position, std::string>> warnings;
    std::vector<std::pair<Position, std::string>> errors;
};

/// Takes a preprocessed text apart: what is left of directives are line marks and pragmas.
Tokens scan(std::string_view text, const std::string& name);

} // namespace helvantine::hlsl
