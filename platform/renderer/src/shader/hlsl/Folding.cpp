// SPDX-License-Identifier: MIT
#include "shader/hlsl/Folding.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <unordered_map>

namespace helvantine::hlsl
{

namespace
{

using Bits = uint32_t;

float asFloat(Bits bits)
{
    return std::bit_cast<float>(bits);
}

Bits asBits(float value)
{
    return std::bit_cast<Bits>(value);
}

Bits magnitude(Bits bits)
{
    return bits >> 31 ? 0U - bits : bits;
}

float saturated(float x)
{
    return x > 0 ? std::min(x, 1.0f) : 0.0f;
}

/// Of two numbers the one that is a number.
float smaller(float a, float b)
{
    return std::fmin(a, b);
}

float larger(float a, float b)
{
    return std::fmax(a, b);
}

float signOf(float x)
{
    return float(x > 0) - float(x < 0);
}

float smoothstepOf(float low, float high, float x)
{
    const float t = saturated((x - low) / (high - low));
    return t * t * (3 - 2 * t);
}

template <class Number>
bool compare(std::string_view op, Number a, Number b)
{
    return op == "<"    ? a < b
           : op == ">"  ? a > b
           : op == "<=" ? a <= b
           : op == ">=" ? a >= b
           : op == "==" ? a == b
                        : a != b;
}

Bits divide(Bits a, Bits b)
{
    return b == 0 ? ~0U : a / b;
}

Bits remainder(Bits a, Bits b)
{
    return b == 0 ? ~0U : a % b;
}

Bits divideSigned(Bits a, Bits b)
{
    const Bits quotient = divide(magnitude(a), magnitude(b));
    return (a ^ b) >> 31 ? 0U - quotient : quotient;
}

Bits remainderSigned(Bits a, Bits b)
{
    const Bits rest = remainder(magnitude(a), magnitude(b));
    return a >> 31 ? 0U - rest : rest;
}

using Unary = float (*)(float);
using Binary = float (*)(float, float);
using Ternary = float (*)(float, float, float);

const std::unordered_map<std::string_view, Unary> unaries = {
    {"(-$0)", [](float x) { return -x; }},
    {"abs($0)", [](float x) { return std::fabs(x); }},
    {"acos($0)", [](float x) { return std::acos(x); }},
    {"asin($0)", [](float x) { return std::asin(x); }},
    {"atan($0)", [](float x) { return std::atan(x); }},
    {"ceil($0)", [](float x) { return std::ceil(x); }},
    {"cos($0)", [](float x) { return std::cos(x); }},
    {"cosh($0)", [](float x) { return std::cosh(x); }},
    {"degrees($0)", [](float x) { return x * 57.29577951f; }},
    {"exp($0)", [](float x) { return std::exp(x); }},
    {"exp2($0)", [](float x) { return std::exp2(x); }},
    {"floor($0)", [](float x) { return std::floor(x); }},
    {"frac($0)", [](float x) { return x - std::floor(x); }},
    {"log($0)", [](float x) { return std::log(x); }},
    {"log10($0)", [](float x) { return std::log10(x); }},
    {"log2($0)", [](float x) { return std::log2(x); }},
    {"radians($0)", [](float x) { return x * 0.01745329252f; }},
    {"rcp($0)", [](float x) { return 1 / x; }},
    {"round($0)", [](float x) { return std::nearbyint(x); }},
    {"rsqrt($0)", [](float x) { return 1 / std::sqrt(x); }},
    {"saturate($0)", saturated},
    {"sin($0)", [](float x) { return std::sin(x); }},
    {"sinh($0)", [](float x) { return std::sinh(x); }},
    {"sqrt($0)", [](float x) { return std::sqrt(x); }},
    {"tan($0)", [](float x) { return std::tan(x); }},
    {"tanh($0)", [](float x) { return std::tanh(x); }},
    {"trunc($0)", [](float x) { return std::trunc(x); }},
};

const std::unordered_map<std::string_view, Binary> binaries = {
    {"($0 + $1)", [](float a, float b) { return a + b; }},
    {"($0 - $1)", [](float a, float b) { return a - b; }},
    {"($0 * $1)", [](float a, float b) { return a * b; }},
    {"($0 / $1)", [](float a, float b) { return a / b; }},
    {"fmod", [](float a, float b) { return a - b * std::trunc(a / b); }},
    {"min($0, $1)", smaller},
    {"max($0, $1)", larger},
    {"pow($0, $1)", [](float a, float b) { return a < 0 ? std::nanf("") : std::pow(a, b); }},
    {"atan2($0, $1)", [](float a, float b) { return std::atan2(a, b); }},
    {"step", [](float a, float b) { return b >= a ? 1.0f : 0.0f; }},
    {"ldexp", [](float a, float b) { return a * std::exp2(b); }},
};

const std::unordered_map<std::string_view, Ternary> ternaries = {
    {"clampFloat", [](float x, float low, float high) { return smaller(larger(x, low), high); }},
    {"lerp", [](float a, float b, float t) { return a + t * (b - a); }},
    {"mad", [](float a, float b, float c) { return a * b + c; }},
    {"smoothstep($0, $1, $2)", smoothstepOf},
};

using Whole = Bits (*)(Bits, Bits);

const std::unordered_map<std::string_view, Whole> wholes = {
    {"($0 + $1)", [](Bits a, Bits b) { return a + b; }},
    {"($0 - $1)", [](Bits a, Bits b) { return a - b; }},
    {"($0 * $1)", [](Bits a, Bits b) { return a * b; }},
    {"($0 & $1)", [](Bits a, Bits b) { return a & b; }},
    {"($0 | $1)", [](Bits a, Bits b) { return a | b; }},
    {"($0 ^ $1)", [](Bits a, Bits b) { return a ^ b; }},
    {"udiv", divide},
    {"urem", remainder},
    {"uremKnown", remainder},
    {"idiv", divideSigned},
    {"irem", remainderSigned},
    {"iremKnown", remainderSigned},
};

/// One component of a float result.
bool foldFloat(std::string_view operation, const std::array<Bits, 3>& bits, Bits& result)
{
    const float a = asFloat(bits[0]);
    const float b = asFloat(bits[1]);
    if (const auto one = unaries.find(operation); one != unaries.end())
        result = asBits(one->second(a));
    else if (const auto two = binaries.find(operation); two != binaries.end())
        result = asBits(two->second(a, b));
    else if (const auto three = ternaries.find(operation); three != ternaries.end())
        result = asBits(three->second(a, b, asFloat(bits[2])));
    else
        return false;
    return true;
}

bool foldInteger(std::string_view operation, bool isSigned, const std::array<Bits, 3>& bits, Bits& result)
{
    const auto [a, b, c] = bits;
    const auto lesser = [isSigned](Bits x, Bits y) { return isSigned ? int32_t(x) < int32_t(y) : x < y; };
    if (const auto found = wholes.find(operation); found != wholes.end())
        result = found->second(a, b);
    else if (operation == "($0 / $1)")
        result = isSigned ? divideSigned(a, b) : divide(a, b);
    else if (operation == "(-$0)")
        result = 0U - a;
    else if (operation == "(~$0)")
        result = ~a;
    else if (operation == "abs($0)")
        result = magnitude(a);
    else if (operation == "($0 << $1)")
        result = a << (b & 31);
    else if (operation == "($0 >> $1)")
        result = isSigned ? Bits(int32_t(a) >> (b & 31)) : a >> (b & 31);
    else if (operation == "min($0, $1)")
        result = lesser(b, a) ? b : a;
    else if (operation == "max($0, $1)")
        result = lesser(a, b) ? b : a;
    else if (operation == "clampInt" || operation == "clampUint") {
        const Bits low = lesser(a, b) ? b : a;
        result = lesser(c, low) ? c : low;
    } else if (operation == "madInt" || operation == "madUint")
        result = a * b + c;
    else if (operation == "signInt")
        result = Bits(int(int32_t(a) > 0) - int(int32_t(a) < 0));
    else
        return false;
    return true;
}

/// A comparison or a logical operation: the operands may be of any base.
bool foldBool(std::string_view operation, Base base, Bits a, Bits b, Bits& result)
{
    if (operation == "(!$0)")
        result = a == 0;
    else if (operation == "($0 && $1)" || operation == "and")
        result = a != 0 && b != 0;
    else if (operation == "($0 || $1)" || operation == "or")
        result = a != 0 || b != 0;
    else if (operation == "isnan")
        result = std::isnan(asFloat(a));
    else if (operation == "isinf")
        result = std::isinf(asFloat(a));
    else if (operation == "isfinite")
        result = std::isfinite(asFloat(a));
    else if (operation.starts_with("($0 ") && operation.ends_with(" $1)")) {
        const std::string_view op = operation.substr(4, operation.size() - 8);
        if (op != "<" && op != ">" && op != "<=" && op != ">=" && op != "==" && op != "!=")
            return false;
        result = base == Base::Float ? compare(op, asFloat(a), asFloat(b))
                 : base == Base::Int ? compare(op, int32_t(a), int32_t(b))
                                     : compare(op, a, b);
    } else
        return false;
    return true;
}

bool foldComponent(std::string_view operation, Base result, Base from, const std::array<Bits, 3>& bits,
                   Bits& folded)
{
    if (result == Base::Bool)
        return foldBool(operation, from, bits[0], bits[1], folded);
    if (operation == "asfloat($0)" || operation == "asuint($0)" || operation == "asint($0)")
        return folded = bits[0], true;
    if (operation == "signFloat")
        return folded = Bits(int32_t(signOf(asFloat(bits[0])))), true;
    if (from != result)
        return false;
    return result == Base::Float ? foldFloat(operation, bits, folded)
                                 : foldInteger(operation, result == Base::Int, bits, folded);
}

/// Many components to one.
bool foldTogether(std::string_view operation, const std::vector<Operand>& operands, Value& value)
{
    const Type& type = *operands[0].type;
    const Value& first = *operands[0].value;
    const auto isSet = [&type](Bits bits) {
        return type.base == Base::Float ? !(asFloat(bits) == 0) : bits != 0;
    };
    if (operation == "any") {
        value[0] = std::any_of(first.begin(), first.begin() + type.components(), isSet);
    } else if (operation == "all") {
        value[0] = std::all_of(first.begin(), first.begin() + type.components(), isSet);
    } else if (operation == "dot" && type.base == Base::Float) {
        float sum = 0;
        for (uint32_t i = 0; i < type.components(); ++i)
            sum += asFloat(first[i]) * asFloat((*operands[1].value)[i]);
        value[0] = asBits(sum);
    } else {
        return false;
    }
    return true;
}

} // namespace

bool foldOperation(std::string_view operation, const Type& result, const std::vector<Operand>& operands,
                   Value& value)
{
    if (operands.empty() || operands.size() > 3)
        return false;
    if (foldTogether(operation, operands, value))
        return true;
    for (uint32_t i = 0; i < result.components(); ++i) {
        std::array<Bits, 3> bits{};
        for (size_t operand = 0; operand < operands.size(); ++operand)
            bits[operand] = (*operands[operand].value)[i];
        if (!foldComponent(operation, result.base, operands[0].type->base, bits, value[i]))
            return false;
    }
    return true;
}

uint32_t convertBits(uint32_t bits, Base from, Base to)
{
    if (from == to)
        return bits;
    if (from == Base::Float) {
        const float value = asFloat(bits);
        if (to == Base::Bool)
            return !(value == 0);
        if (to == Base::Uint)
            return value > 0 ? value < 4294967296.0f ? uint32_t(value) : ~0U : 0;
        if (value >= 2147483648.0f)
            return 0x7fffffff;
        return value > -2147483648.0f ? uint32_t(int32_t(value)) : value <= -2147483648.0f ? 0x80000000 : 0;
    }
    if (to == Base::Bool)
        return bits != 0;
    if (to == Base::Float)
        return asBits(from == Base::Int ? float(int32_t(bits)) : float(bits));
    return bits;
}

std::string spellComponent(uint32_t bits, Base base)
{
    if (base == Base::Bool)
        return bits ? "true" : "false";
    if (base == Base::Uint)
        return std::to_string(bits) + "u";
    if (base == Base::Int)
        return bits == 0x80000000 ? "(-2147483647 - 1)" : std::to_string(int32_t(bits));
    const float value = asFloat(bits);
    if (!std::isfinite(value))
        return "asfloat(" + std::to_string(bits) + "u)";
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    std::string text(digits, end);
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

} // namespace helvantine::hlsl
