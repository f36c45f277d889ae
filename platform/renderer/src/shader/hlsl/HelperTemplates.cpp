// SPDX-License-Identifier: MIT
#include "shader/hlsl/HelperTemplates.h"

#include "shader/hlsl/Names.h"

#include <unordered_map>

namespace helvantine::hlsl
{

namespace
{

using Templates = std::unordered_map<std::string_view, HelperTemplate>;

const Templates& templates()
{
    static const Templates all = [] {
        const HelperTemplate list[] = {
            // Conversions saturate, and what isn't a number becomes 0.
            {"toInt",
             "$I",
             "$F a",
             "return a > ($F)(-2147483648.0) ? (a < ($F)(2147483648.0) ? ($I)(a) : ($I)(2147483647)) : "
             "(a <= ($F)(-2147483648.0) ? ($I)(-2147483647 - 1) : ($I)(0));",
             {}},
            {"toUint",
             "$U",
             "$F a",
             "return a > ($F)(0.0) ? (a < ($F)(4294967296.0) ? ($U)(a) : ($U)(4294967295u)) : ($U)(0u);",
             {}},

            // A division by zero sets all bits, and the sign of a signed one is put on afterwards.
            {"udiv",
             "$U",
             "$U a, $U b",
             "$B z = b == ($U)(0u); return z ? ($U)(4294967295u) : a / (z ? ($U)(1u) : b);",
             {}},
            {"urem",
             "$U",
             "$U a, $U b",
             "$B z = b == ($U)(0u); $U d = z ? ($U)(1u) : b; return z ? ($U)(4294967295u) : a - d * (a / d);",
             {}},
            {"idiv",
             "$I",
             "$I a, $I b",
             "$I q = ($I)(@udiv(($U)(abs(a)), ($U)(abs(b)))); return (a ^ b) < ($I)(0) ? -q : q;",
             {"udiv"}},
            {"irem",
             "$I",
             "$I a, $I b",
             "$I r = ($I)(@urem(($U)(abs(a)), ($U)(abs(b)))); return a < ($I)(0) ? -r : r;",
             {"urem"}},
            {"fmod", "$F", "$F a, $F b", "return a - b * trunc(a / b);", {}},
            // For divisors that are known and neither 0 nor -1.
            {"iremKnown", "$I", "$I a, $I b", "return a - b * (a / b);", {}},
            {"uremKnown", "$U", "$U a, $U b", "return a - b * (a / b);", {}},

            // Both sides are computed, whatever the first one is.
            {"and", "$B", "$B a, $B b", "return a && b;", {}},
            {"or", "$B", "$B a, $B b", "return a || b;", {}},

            {"clampFloat", "$F", "$F a, $F b, $F c", "return min(max(a, b), c);", {}},
            {"clampInt", "$I", "$I a, $I b, $I c", "return min(max(a, b), c);", {}},
            {"clampUint", "$U", "$U a, $U b, $U c", "return min(max(a, b), c);", {}},
            {"signFloat", "$I", "$F a", "return ($I)(a > ($F)(0.0)) - ($I)(a < ($F)(0.0));", {}},
            {"signInt", "$I", "$I a", "return ($I)(a > ($I)(0)) - ($I)(a < ($I)(0));", {}},
            {"ldexp", "$F", "$F a, $F b", "return a * exp2(b);", {}},
            {"modf", "$F", "$F a, out $F b", "b = trunc(a); return a - b;", {}},
            {"modfInt", "$F", "$F a, out $I b", "$F t = trunc(a); b = @toInt(t); return a - t;", {"toInt"}},
            {"frexp",
             "$F",
             "$F a, out $F b",
             "$U u = asuint(a); $B z = (u & ($U)(2147483647u)) == ($U)(0u); "
             "b = z ? ($F)(0.0) : ($F)(($I)((u >> ($U)(23u)) & ($U)(255u)) - ($I)(126)); "
             "return z ? a : asfloat((u & ($U)(2155872255u)) | ($U)(1056964608u));",
             {}},
            {"sincos", "void", "$F a, out $F b, out $F c", "b = sin(a); c = cos(a);", {}},
            {"isnan", "$B", "$F a", "return (asuint(a) & ($U)(2147483647u)) > ($U)(2139095040u);", {}},
            {"isinf", "$B", "$F a", "return (asuint(a) & ($U)(2147483647u)) == ($U)(2139095040u);", {}},
            {"isfinite", "$B", "$F a", "return (asuint(a) & ($U)(2147483647u)) < ($U)(2139095040u);", {}},
            {"mad", "$F", "$F a, $F b, $F c", "return a * b + c;", {}},
            {"madInt", "$I", "$I a, $I b, $I c", "return a * b + c;", {}},
            {"madUint", "$U", "$U a, $U b, $U c", "return a * b + c;", {}},
            {"lerp", "$F", "$F a, $F b, $F c", "return a + c * (b - a);", {}},
            {"step", "$F", "$F a, $F b", "return b >= a ? ($F)(1.0) : ($F)(0.0);", {}},
            {"normalizeScalar", "$F", "$F a", "return a * rsqrt(a * a);", {}},
            {"reflectScalar", "$F", "$F a, $F b", "return a - 2.0 * b * (a * b);", {}},
            {"refractScalar",
             "$F",
             "$F a, $F b, $F c",
             "float d = a * b; float k = 1.0 - c * c * (1.0 - d * d); "
             "return k < 0.0 ? 0.0 : c * a - (c * d + sqrt(k)) * b;",
             {}},
            {"faceforwardScalar", "$F", "$F a, $F b, $F c", "return b * c < 0.0 ? a : -a;", {}},
            {"lit",
             "float4",
             "float a, float b, float c",
             "return float4(1.0, max(a, 0.0), a < 0.0 || b < 0.0 ? 0.0 : pow(b, c), 1.0);",
             {}},
            {"dst", "float4", "float4 a, float4 b", "return float4(1.0, a.y * b.y, a.z, b.w);", {}},
        };
        Templates made;
        for (const HelperTemplate& one : list)
            made.emplace(one.name, one);
        return made;
    }();
    return all;
}

} // namespace

bool isHelperTemplate(std::string_view name)
{
    return templates().contains(name);
}

const HelperTemplate& getHelperTemplate(std::string_view name)
{
    return templates().at(name);
}

std::string spellTemplateName(std::string_view name, const TemplateNames& names)
{
    return helperPrefix + std::string(name) + "_" + names.count;
}

std::string spellTemplate(const HelperTemplate& pattern, const TemplateNames& names)
{
    std::string source;
    for (std::string_view part :
         {pattern.result, std::string_view(" @"), pattern.name, std::string_view("("), pattern.parameters,
          std::string_view(") { "), pattern.body, std::string_view(" }\n")})
        source += part;
    std::string text;
    for (size_t i = 0; i < source.size(); ++i) {
        if (source[i] == '@') {
            const size_t end = source.find('(', i);
            text += spellTemplateName(std::string_view(source).substr(i + 1, end - i - 1), names);
            i = end - 1;
        } else if (source[i] == '$') {
            const char letter = source[++i];
            text += letter == 'F'   ? names.floats
                    : letter == 'I' ? names.ints
                    : letter == 'U' ? names.uints
                    : letter == 'B' ? names.bools
                                    : names.count;
        } else {
            text += source[i];
        }
    }
    return text;
}

std::string spellRowsConstructor(const Type& matrix, const std::string& name)
{
    static constexpr const char* bases[] = {"bool", "int", "uint", "float"};
    const std::string scalar = bases[size_t(matrix.base)];
    std::string parameters;
    std::string body = matrix.spelling() + " m;";
    for (uint32_t row = 0; row < matrix.rows; ++row) {
        std::string components;
        for (uint32_t column = 0; column < matrix.columns; ++column) {
            const std::string parameter = "a" + std::to_string(row) + std::to_string(column);
            parameters += (parameters.empty() ? "" : ", ") + scalar + " " + parameter;
            components += (column ? ", " : "") + parameter;
        }
        const std::string value = matrix.columns == 1
                                      ? components
                                      : scalar + std::to_string(matrix.columns) + "(" + components + ")";
        body += " m.r[" + std::to_string(row) + "] = " + value + ";";
    }
    return matrix.spelling() + " " + name + "(" + parameters + ") { " + body + " return m; }\n";
}

} // namespace helvantine::hlsl
