// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>
#include <vector>

/// Numbers and their texts. None of these looks at the locale: the point is a point everywhere.

namespace helvantine
{

/// printf into a string. A null format gives an empty text.
[[gnu::format(printf, 1, 2)]] HELVANTINE_CORE_API std::string formatString(const char* format, ...);

/// Appends what "%f" prints: six decimals, exactly rounded, also "inf", "-inf", "nan" and "-0.000000".
/// The quick way on hot paths; allocates only if the string must grow.
HELVANTINE_CORE_API void appendFloat(std::string& text, double value);

/// Appends what "%d" prints.
HELVANTINE_CORE_API void appendInt(std::string& text, int value);

/// atof: leading blanks are skipped, what follows the number is ignored, an unreadable or null text
/// gives 0. Hexadecimal, "inf" and "nan" are read; too large gives infinity, too small 0.
HELVANTINE_CORE_API double parseDouble(const char* text);

/// atoi, but numbers outside the range saturate.
HELVANTINE_CORE_API int parseInt(const char* text);

/// Splits at each character of `separators`. Empty tokens and blanks are kept, so n separators give
/// n + 1 tokens; a null text gives none.
HELVANTINE_CORE_API std::vector<std::string> tokenize(const char* text, const char* separators);

} // namespace helvantine
