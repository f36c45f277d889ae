// SPDX-License-Identifier: MIT
#include "HlslValue.h"

#include <helvantine/core/Text.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace helvantine::test
{

namespace
{

bool readFloat(const std::string& text, uint32_t& bits)
{
    char* end = nullptr;
    const float number = text == "nan"    ? std::numeric_limits<float>::quiet_NaN()
                         : text == "inf"  ? std::numeric_limits<float>::infinity()
                         : text == "-inf" ? -std::numeric_limits<float>::infinity()
                                          : std::strtof(text.c_str(), &end);
    bits = std::bit_cast<uint32_t>(number);
    return !end || (end != text.c_str() && *end == 0);
}

bool readComponent(const std::string& scalar, const std::string& text, uint32_t& bits)
{
    char* end = nullptr;
    if (text.starts_with("0x")) {
        bits = static_cast<uint32_t>(std::strtoul(text.c_str(), &end, 16));
        return *end == 0;
    }
    if (scalar == "float")
        return readFloat(text, bits);
    if (scalar == "bool") {
        bits = text == "true";
        return text == "true" || text == "false";
    }
    bits = static_cast<uint32_t>(std::strtoll(text.c_str(), &end, 10));
    return end != text.c_str() && *end == 0;
}

/// "float2x3" and the like.
bool readType(const std::string& text, HlslValue& value)
{
    for (const char* scalar : {"float", "int", "uint", "bool"}) {
        const std::string rest = text.starts_with(scalar) ? text.substr(std::string(scalar).size()) : "?";
        const auto isSize = [&rest](size_t i) { return rest[i] >= '1' && rest[i] <= '4'; };
        value.scalar = scalar;
        if (rest.empty())
            return true;
        if (rest.size() == 1 && isSize(0)) {
            value.columns = static_cast<unsigned>(rest[0] - '0');
            return true;
        }
        if (rest.size() == 3 && isSize(0) && rest[1] == 'x' && isSize(2)) {
            value.isMatrix = true;
            value.rows = static_cast<unsigned>(rest[0] - '0');
            value.columns = static_cast<unsigned>(rest[2] - '0');
            return true;
        }
    }
    return false;
}

/// Infinities, what isn't a number, denormals and -0 have no literals.
std::string floatLiteral(uint32_t bits)
{
    const auto number = std::bit_cast<float>(bits);
    if (!std::isnormal(number) && bits != 0)
        return formatString("asfloat(0x%08xu)", bits);
    std::string text = formatString("%.9g", double(number));
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

std::string componentLiteral(const std::string& scalar, uint32_t bits)
{
    if (scalar == "float")
        return floatLiteral(bits);
    if (scalar == "bool")
        return bits ? "true" : "false";
    if (scalar == "uint" || bits == 0x80000000u)
        return formatString(scalar == "uint" ? "%uu" : "int(%uu)", bits);
    return formatString("%d", static_cast<int>(bits));
}

template <typename Show>
std::string write(const HlslValue& value, const Show& show)
{
    std::string text;
    for (const uint32_t bits : value.bits)
        text += (text.empty() ? "" : ", ") + show(value.scalar, bits);
    return value.bits.size() == 1 && !value.isMatrix ? text : value.type() + "(" + text + ")";
}

} // namespace

std::string showHlslBits(const std::string& scalar, uint32_t bits)
{
    if (scalar == "float")
        return formatString("%.9g", double(std::bit_cast<float>(bits)));
    return scalar == "bool" ? (bits ? "true" : "false") : componentLiteral(scalar, bits);
}

std::string HlslValue::type() const
{
    if (isMatrix)
        return scalar + std::to_string(rows) + "x" + std::to_string(columns);
    return columns > 1 ? scalar + std::to_string(columns) : scalar;
}

std::string HlslValue::literal() const
{
    return write(*this, componentLiteral);
}

std::string HlslValue::show() const
{
    return write(*this, showHlslBits);
}

bool readHlslValue(const std::string& text, HlslValue& value)
{
    const size_t open = text.find('(');
    const bool hasType = open != std::string::npos;
    if (hasType && (text.back() != ')' || !readType(text.substr(0, open), value)))
        return false;
    const std::string inner = hasType ? text.substr(open + 1, text.size() - open - 2) : text;
    for (const std::string& part : tokenize(inner.c_str(), ",")) {
        const size_t start = part.find_first_not_of(' ');
        const size_t end = part.find_last_not_of(' ');
        uint32_t bits = 0;
        if (start == std::string::npos ||
            !readComponent(value.scalar, part.substr(start, end + 1 - start), bits))
            return false;
        value.bits.push_back(bits);
    }
    return value.bits.size() == size_t(value.rows) * value.columns;
}

} // namespace helvantine::test
