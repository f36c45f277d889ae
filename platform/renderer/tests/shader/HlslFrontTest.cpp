// SPDX-License-Identifier: MIT
// What is refused and what warns, by its words. What texts mean is tested by the table of HLSL expressions.
#include "ShaderFixture.h"

#include <utility>
#include <vector>

namespace helvantine
{

namespace
{

const std::string declarations = plainVertex + R"(
cbuffer Frame : register(b0) { float4 v; float4x4 m; int i; float f; };
Texture2D image : register(t0); Texture2D many[3] : register(t4); SamplerState read : register(s0);
)";

class HlslFrontTest : public ShaderTest
{
protected:
    static std::string pixelText(const std::string& body)
    {
        return declarations + "float4 PS(float4 p : SV_Position) : SV_Target {" + body + "}\n";
    }
};

TEST_F(HlslFrontTest, RefusalsNameWhatTheyMean)
{
    const std::pair<const char*, const char*> cases[] = {
        {"vec3 a = 1; return 1;", "'vec3' is GLSL; HLSL has float3"},
        {"return mix(v, v, f);", "'mix' is GLSL; HLSL has lerp"},
        {"return texture(image, p.xy);", "'texture' is GLSL; HLSL has Texture2D and its method Sample"},
        {"return tex2D(image, p.xy);", "'tex2D' is of shader model 3; use a texture and its method Sample"},
        {"double d = f; return d;", "'double' isn't supported; use float"},
        {"float4 a = v.xy; return a;", "'float2' doesn't convert to 'float4'"},
        {"return v * m;", "'*' can't work on 'float4' and 'float4x4': neither fits inside the other"},
        {"return v & 1;", "'&' works on whole numbers, not on 'float4'"},
        {"if (v) return 1; return 0;", "a condition is one bool, not 'float4'; use any or all"},
        {"v.x = 1; return v;", "'v' is in a constant buffer and can't be written to"},
        {"const float k = 1; k = 2; return k;", "'k' is const and can't be written to"},
        {"return v.xyq;", "'float4' has no component 'xyq'"},
        {"return m._m04;", "'float4x4' has no component '_m04'"},
        {"return float4(1, 2, 3);", "'float4' takes 4 components, not 3"},
        {"return sin(f, f);", "'sin' takes 1 argument, not 2"},
        {"float t[2] = { 1 }; return t[0];", "the initializer has too few values"},
        {"float t[2] = { 1, 2, 3 }; return t[0];", "the initializer has 3 values, and 'float[2]' takes 2"},
        {"float t[2] = { 1, 2 }; return t[2];", "index 2 is outside of 'float[2]'"},
        {"for (int k = 0; k < 3; ++k) {} return k;", "'k' was declared in a for statement that has ended"},
        {"return image.Sample(p.xy, read);", "'Sample' takes a SamplerState, not 'float2'"},
        {"return image.Sample(read, p.xy, int2(i, 1));",
         "the offset of 'Sample' must be known while compiling"},
        {"return image.Fetch(p.xy);", "'Texture2D<float4>' has no method 'Fetch'"},
        {"return 1", "';' is missing before '}'"},
        {"break; return 1;", "'break' stands outside of a loop"},
    };
    for (const auto& [body, words] : cases) {
        SCOPED_TRACE(body);
        const std::string errors = failure(pixelText(body));
        EXPECT_EQ(errors.substr(0, errors.find('\n')), "test.hlsl:5: error: " + std::string(words));
    }
}

TEST_F(HlslFrontTest, FunctionsThatAreNotUsedAreCheckedAndLeftOut)
{
    EXPECT_EQ(failure(declarations + "float unused() { return absent; }\n" + plainPixel),
              "test.hlsl:5: error: 'absent' isn't declared\n");
    const ShaderProgramPtr program =
        compile(declarations + "float4 unused() { return image.Sample(read, v.xy); }\n" + plainPixel);
    EXPECT_TRUE(program->bindings.empty());
}

TEST_F(HlslFrontTest, WhatOnlyAPixelCanDoIsRefusedInAVertexProgram)
{
    EXPECT_EQ(
        failure("Texture2D t; SamplerState s;\nfloat4 help(float2 p) { return t.Sample(s, p); }\n"
                "float4 VS(float4 p : POSITION) : SV_Position { return help(p.xy); }\n" +
                plainPixel),
        "test.hlsl:2: error: a vertex program has no derivatives, and can't discard; use SampleLevel or "
        "SampleGrad to read a texture\n");
}

TEST_F(HlslFrontTest, WarningsTellTheLineAndTheText)
{
    const std::pair<const char*, const char*> cases[] = {
        {"float2 a = v; return a.xyxy;", "'float4' is cut to 'float2'"},
        {"return (m * (float3x3)m)[0].xyzz;", "'float4x4' is cut to 'float3x3' by '*'"},
        {"return mul(v, (float3x3)m).xyzz;", "'float4' is cut to 'float3' by 'mul'"},
        {"return 1e40;", "'1e40' is beyond the range of float and becomes infinity"},
    };
    for (const auto& [body, words] : cases) {
        SCOPED_TRACE(body);
        EXPECT_EQ(compile(pixelText(body))->describeWarnings("test.hlsl"),
                  "test.hlsl:5: warning: " + std::string(words) + "\n");
    }
    const std::string ignored = "SamplerState s { Filter = MIN_MAG_MIP_LINEAR; AddressU = Wrap; };\n"
                                "technique11 T { pass P { SetPixelShader(CompileShader(ps_5_0, PS())); } }\n";
    EXPECT_EQ(compile(ignored + plainVertex + plainPixel)->describeWarnings("a"),
              "a:1: warning: the states of sampler 's' are ignored: samplers are bound by the host\n"
              "a:2: warning: 'technique11' is ignored: programs are chosen by their entry points\n");
}

TEST_F(HlslFrontTest, ElementsOfATextureArrayAreBindingsOfTheirOwn)
{
    const auto slotsOf = [this](const std::string& body) {
        const ShaderProgramPtr program = compile(pixelText(body));
        std::vector<int> slots;
        for (const ShaderBinding& binding : program->bindings)
            if (binding.kind == ShaderBindingKind::Texture)
                slots.push_back(binding.slot);
        return slots;
    };
    EXPECT_EQ(slotsOf("return many[1].Sample(read, p.xy);"), (std::vector<int>{5}));
    EXPECT_EQ(slotsOf("return many[i].Sample(read, p.xy);"), (std::vector<int>{4, 5, 6}));
    EXPECT_EQ(failure(declarations + "float4 get(Texture2D t, float2 p) { return t.Sample(read, p); }\n"
                                     "float4 PS() : SV_Target { return get(many[i], v.xy); }\n"),
              "test.hlsl:6: error: which element of 'many' is handed over must be known while compiling\n");
}

TEST_F(HlslFrontTest, StructuresWithinStructuresAndNearestOverloadsCompile)
{
    compile(declarations + R"(
struct Outer { struct Inner { float x; } inner; float y; float sum() { return inner.x + twice(); } float twice() { return 2 * y; } };
float pick(uint x) { return x; }
float pick(float x) { return x; }
float4 PS() : SV_Target { Outer o; o.inner.x = pick(i); o.y = pick(f); return o.sum(); }
)");
}

TEST_F(HlslFrontTest, LiteralsHaveComponents)
{
    compile(pixelText("return 1.xxxx * 2..xxxx * 0.5f.xxxx * 3.0.rrrr + 4u.xxxx;"));
}

TEST_F(HlslFrontTest, NamesThatAreReservedElsewhereAreTheAuthors)
{
    compile(plainVertex + R"(
struct texture { float sample; float linear; };
float mix(float point) { return point * 2; }
float lerp(float line) { return line + 1; }
float4 PS(float4 p : SV_Position) : SV_Target
{
    texture buffer = { p.x, p.y };
    float vec3 = mix(buffer.sample), hv_x = lerp(vec3), technique_ = 1, template = 2;
    return lerp(vec3, hv_x, 0.5) + buffer.linear + template;
}
)");
}

} // namespace

} // namespace helvantine
