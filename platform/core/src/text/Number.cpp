// SPDX-License-Identifier: MIT
#include <helvantine/core/Text.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>

namespace helvantine
{

namespace
{

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The blanks of the "C" locale.
bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Skips blanks and a sign. True if the sign is a minus.
bool skipToNumber(const char*& text)
{
    while (isBlank(*text))
        ++text;
    const bool negative = *text == '-';
    if (negative || *text == '+')
        ++text;
    return negative;
}

/// Writes `units` of a millionth as digits with six decimals. Returns the end.
char* writeMillionths(char* out, std::uint64_t units)
{
    out = std::to_chars(out, out + 20, units / 1000000).ptr;
    *out = '.';
    auto decimals = static_cast<unsigned>(units % 1000000);
    for (int i = 6; i > 0; --i, decimals /= 10)
        out[i] = static_cast<char>('0' + decimals % 10);
    return out + 7;
}

/// The digits of a number as from_chars accepts it, base 10 or 16, and what its exponent counts in.
struct Notation
{
    std::chars_format format;
    char exponentLetter;   ///< lower case
    long long digitWeight; ///< steps of the exponent that one digit is worth
};

constexpr Notation decimal{std::chars_format::general, 'e', 1};
constexpr Notation hexadecimal{std::chars_format::hex, 'p', 4};

/// The exponent behind its letter, held within bounds that no text reaches otherwise.
long long readExponent(const char* text, const char* end)
{
    constexpr long long beyondAnyText = std::numeric_limits<long long>::max() / 8;
    const bool negative = *text == '-';
    if (negative || *text == '+')
        ++text;
    long long exponent = 0;
    if (std::from_chars(text, end, exponent).ec != std::errc() || exponent > beyondAnyText)
        exponent = beyondAnyText;
    return negative ? -exponent : exponent;
}

/// Whether a text that fits no double is too large, not too small: the place of its first digit
/// that isn't 0, with its exponent, says so.
bool isTooLarge(const char* text, const char* end, const Notation& notation)
{
    long long place = 0;
    bool afterPoint = false, significant = false;
    for (; text != end; ++text) {
        if ((*text | 0x20) == notation.exponentLetter)
            return place * notation.digitWeight + readExponent(text + 1, end) > 0;
        if (*text == '.') {
            afterPoint = true;
            continue;
        }
        significant = significant || *text != '0';
        if (significant && !afterPoint)
            ++place;
        if (!significant && afterPoint)
            --place;
    }
    return place > 0;
}

/// "0x" and at least one digit behind it, maybe after a point.
bool isHexadecimal(const char* text)
{
    if (text[0] != '0' || (text[1] != 'x' && text[1] != 'X'))
        return false;
    const char* digit = text + (text[2] == '.' ? 3 : 2);
    return std::strchr("0123456789abcdefABCDEF", *digit) != nullptr && *digit != 0;
}

} // namespace

void appendFloat(std::string& text, double value)
{
    // A float times a million needs at most 38 bits: the product is exact, and rounding it half to
    // even is what printf does.
    constexpr double exactLimit = 1e12;
    if (std::abs(value) < exactLimit && static_cast<double>(static_cast<float>(value)) == value) {
        char digits[32];
        char* out = digits;
        if (std::signbit(value))
            *out++ = '-';
        out = writeMillionths(out, static_cast<std::uint64_t>(std::nearbyint(std::abs(value) * 1e6)));
        text.append(digits, out);
        return;
    }
    char digits[352]; // the largest double has 309 digits in front of the point
    text.append(digits,
                std::to_chars(digits, digits + sizeof(digits), value, std::chars_format::fixed, 6).ptr);
}

void appendInt(std::string& text, int value)
{
    char digits[16];
    text.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
}

double parseDouble(const char* text)
{
    if (!text)
        return 0;
    const bool negative = skipToNumber(text);
    if (*text == '-') // from_chars would take a second sign
        return 0;
    const Notation& notation = isHexadecimal(text) ? hexadecimal : decimal;
    if (&notation == &hexadecimal)
        text += 2;
    double value = 0;
    const auto [end, error] = std::from_chars(text, text + std::strlen(text), value, notation.format);
    if (error == std::errc::invalid_argument)
        return 0;
    if (error == std::errc::result_out_of_range)
        value = isTooLarge(text, end, notation) ? std::numeric_limits<double>::infinity() : 0;
    return negative ? -value : value;
}

int parseInt(const char* text)
{
    if (!text)
        return 0;
    const bool negative = skipToNumber(text);
    constexpr long long limit = std::numeric_limits<int>::max();
    long long value = 0;
    for (; isDigit(*text); ++text) {
        if (value <= limit)
            value = value * 10 + (*text - '0');
    }
    value = negative ? -value : value;
    return static_cast<int>(std::min(std::max(value, -limit - 1), limit));
}

} // namespace helvantine
