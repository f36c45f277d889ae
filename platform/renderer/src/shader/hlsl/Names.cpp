// SPDX-License-Identifier: MIT
#include "shader/hlsl/Names.h"

#include "shader/hlsl/Intrinsics.h"

#include <algorithm>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace helvantine::hlsl
{

namespace
{

using Words = std::unordered_set<std::string_view>;

const Words keywords = {
    "break",        "case",     "cbuffer",  "const",  "continue",  "default",      "discard",
    "do",           "else",     "false",    "for",    "if",        "in",           "inout",
    "out",          "register", "return",   "static", "struct",    "switch",       "tbuffer",
    "true",         "typedef",  "uniform",  "void",   "while",     "packoffset",   "bool",
    "int",          "uint",     "float",    "half",   "double",    "class",        "interface",
    "namespace",    "inline",   "volatile", "extern", "row_major", "column_major", "nointerpolation",
    "noperspective"};

/// What authors may call things and the compiler behind may not.
const Words reservedBehind = {"texture",
                              "Texture",
                              "sample",
                              "centroid",
                              "linear",
                              "shared",
                              "precise",
                              "point",
                              "line",
                              "triangle",
                              "lineadj",
                              "triangleadj",
                              "globallycoherent",
                              "groupshared",
                              "snorm",
                              "unorm",
                              "string",
                              "this",
                              "vector",
                              "matrix",
                              "dword",
                              "fixed",
                              "sampler",
                              "sampler1D",
                              "sampler2D",
                              "sampler3D",
                              "samplerCUBE",
                              "sampler_state",
                              "texture1D",
                              "texture2D",
                              "texture3D",
                              "textureCUBE",
                              "texture1DArray",
                              "texture2DArray",
                              "texture2DMS",
                              "texture2DMSArray",
                              "textureCubeArray",
                              "buffer",
                              "Buffer",
                              "InputPatch",
                              "OutputPatch",
                              "PointStream",
                              "LineStream",
                              "TriangleStream",
                              "ConstantBuffer",
                              "SubpassInput",
                              "SubpassInputMS",
                              "auto",
                              "char",
                              "short",
                              "long",
                              "goto",
                              "enum",
                              "union",
                              "unsigned",
                              "signed",
                              "template",
                              "typename",
                              "using",
                              "virtual",
                              "sizeof",
                              "new",
                              "delete",
                              "mutable",
                              "operator",
                              "private",
                              "protected",
                              "public",
                              "try",
                              "catch",
                              "throw",
                              "friend",
                              "explicit",
                              "const_cast",
                              "static_cast",
                              "reinterpret_cast",
                              "dynamic_cast",
                              "export",
                              "main",
                              "compile",
                              "technique",
                              "technique10",
                              "technique11",
                              "pass",
                              "asm",
                              "asm_fragment",
                              "pixelfragment",
                              "vertexfragment",
                              "stateblock",
                              "stateblock_state",
                              "NULL",
                              "min16float",
                              "min10float",
                              "min16int",
                              "min12int",
                              "min16uint",
                              "float16_t",
                              "int16_t",
                              "uint16_t",
                              "noise",
                              "fma",
                              "unroll",
                              "loop",
                              "flatten",
                              "branch"};

const std::unordered_map<std::string_view, std::string_view> glslHabits = {
    {"vec2", "float2"},
    {"vec3", "float3"},
    {"vec4", "float4"},
    {"ivec2", "int2"},
    {"ivec3", "int3"},
    {"ivec4", "int4"},
    {"uvec2", "uint2"},
    {"uvec3", "uint3"},
    {"uvec4", "uint4"},
    {"bvec2", "bool2"},
    {"bvec3", "bool3"},
    {"bvec4", "bool4"},
    {"mat2", "float2x2"},
    {"mat3", "float3x3"},
    {"mat4", "float4x4"},
    {"mix", "lerp"},
    {"fract", "frac"},
    {"mod", "x - y * floor(x / y)"},
    {"inversesqrt", "rsqrt"},
    {"dFdx", "ddx"},
    {"dFdy", "ddy"},
    {"texture", "Texture2D and its method Sample"},
    {"texture2D", "Texture2D and its method Sample"},
    {"textureLod", "the method SampleLevel"},
    {"textureGrad", "the method SampleGrad"},
    {"texelFetch", "the method Load"},
    {"textureSize", "the method GetDimensions"},
    {"sampler2D", "a Texture2D and a SamplerState"},
    {"samplerCube", "a TextureCube and a SamplerState"},
    {"floatBitsToInt", "asint"},
    {"floatBitsToUint", "asuint"},
    {"intBitsToFloat", "asfloat"},
    {"uintBitsToFloat", "asfloat"},
    {"bitCount", "countbits"},
    {"bitfieldReverse", "reversebits"},
    {"findMSB", "firstbithigh"},
    {"findLSB", "firstbitlow"},
    {"roundEven", "round"},
    {"lessThan", "the operator <"},
    {"greaterThan", "the operator >"},
    {"matrixCompMult", "the operator *"},
    {"inverse", "no such function"},
    {"gl_FragCoord", "an input with the semantic SV_Position"},
    {"gl_FragColor", "an output with the semantic SV_Target"},
    {"gl_Position", "an output with the semantic SV_Position"},
    {"gl_VertexID", "an input with the semantic SV_VertexID"},
    {"gl_FrontFacing", "an input with the semantic SV_IsFrontFace"},
    {"highp", "no precision qualifiers"},
    {"mediump", "no precision qualifiers"},
    {"lowp", "no precision qualifiers"},
    {"precision", "no precision qualifiers"},
    {"attribute", "inputs with semantics"},
    {"varying", "inputs and outputs with semantics"},
    {"layout", "register and packoffset"}};

} // namespace

std::string spell(std::string_view name)
{
    const bool isTaken = name.starts_with(helperPrefix) || name.starts_with("gl_") ||
                         name.find("__") != name.npos || reservedBehind.contains(name) || isIntrinsic(name) ||
                         glslHabits.contains(name);
    return isTaken ? helperPrefix + std::string(name) : std::string(name);
}

std::string spellElement(std::string_view name, uint32_t element)
{
    return helperPrefix + std::to_string(element) + "_" + std::string(name);
}

std::string translateNames(std::string_view message)
{
    const std::string mark = std::string("'") + helperPrefix;
    std::string text;
    for (size_t found = 0; (found = message.find(mark)) != message.npos;) {
        text += std::string(message.substr(0, found)) + "'";
        message.remove_prefix(found + mark.size());
        const size_t digits = std::min(message.find_first_not_of("0123456789"), message.size());
        const size_t end = std::min(message.find('\''), message.size());
        if (digits > 0 && digits < end && message[digits] == '_') {
            text += std::string(message.substr(digits + 1, end - digits - 1)) + "[" +
                    std::string(message.substr(0, digits)) + "]";
            message.remove_prefix(end);
        }
    }
    return text + std::string(message);
}

std::string_view findGlslHabit(std::string_view name)
{
    const auto found = glslHabits.find(name);
    return found == glslHabits.end() ? std::string_view() : found->second;
}

bool isKeyword(std::string_view name)
{
    return keywords.contains(name);
}

} // namespace helvantine::hlsl
