// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace helvantine
{

/// A word of an HLSL text. The view points into the text.
struct HlslToken
{
    enum class Kind : uint8_t
    {
        Word,
        Number,
        Text,  ///< with its quotes
        Symbol ///< one character
    };

    Kind kind = Kind::Symbol;
    bool startsLine = false; ///< first of its line, continued lines being one
    uint32_t line = 1;
    std::string_view text;

    bool is(std::string_view what) const { return text == what; }
};

using HlslTokens = std::vector<HlslToken>;

/// Tokens without comments and blanks. Never fails: what is no token is a symbol.
HlslTokens scanHlsl(std::string_view text);

/// The end of the preprocessor directive that starts at `first`; `first` itself if none does.
size_t endOfDirective(const HlslTokens& tokens, size_t first);

} // namespace helvantine
