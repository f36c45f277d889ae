// SPDX-License-Identifier: MIT
#include "ShaderFixture.h"

#include "shader/ShaderProgramCode.h"

namespace helvantine
{

namespace
{

using ShaderErrorsTest = ShaderTest;

TEST_F(ShaderErrorsTest, LinesAreTheAuthors)
{
    ShaderRequest request = requestOf("\xef\xbb\xbf#define TWICE(x) (x \\\n + x)\n" + plainVertex +
                                      "float4 PS() : SV_Target\n{\n    return TWICE(absent);\n}\n");
    request.macros = {{"FIRST", "1"}, {"SECOND", "FIRST"}};

    EXPECT_EQ(failure(request), "test.hlsl:6: error: 'absent' isn't declared\n");
}

TEST_F(ShaderErrorsTest, MissingPartsAreNamed)
{
    ShaderRequest request = requestOf(plainVertex + plainPixel);
    request.pixelEntry = "PS_Main";
    EXPECT_EQ(failure(request), "test.hlsl:1: error: there is no entry point 'PS_Main'\n");
    request.pixelEntry.clear();
    EXPECT_EQ(failure(request), "test.hlsl:1: error: no pixel entry point\n");
    request.vertexSource.clear();
    EXPECT_EQ(failure(request), "test.hlsl:1: error: no vertex source\n");
}

TEST_F(ShaderErrorsTest, FunctionsThatCallThemselvesAreRefused)
{
    EXPECT_EQ(failure(plainVertex + "float g(float x);\nfloat f(float x) { return g(x); }\n"
                                    "float g(float x) { return f(x); }\n"
                                    "float4 PS() : SV_Target { return f(1); }\n"),
              "test.hlsl:3: error: 'f' calls itself\n");
}

TEST_F(ShaderErrorsTest, LooseGlobalsAndUniformParametersAreRefused)
{
    EXPECT_EQ(failure(plainVertex +
                      "float brightness;\n"
                      "float4 PS(uniform float scale) : SV_Target { return brightness * scale; }\n"),
              "test.hlsl:2: error: 'brightness' is a global variable or uniform parameter outside a cbuffer; "
              "put it "
              "into one\n"
              "test.hlsl:3: error: 'scale' is a global variable or uniform parameter outside a cbuffer; put "
              "it into "
              "one\n");
    compile(plainVertex + "static float brightness = 2;\nfloat4 PS() : SV_Target { return brightness; }\n");
}

TEST_F(ShaderErrorsTest, RegistersThatDoNotExistAreRefused)
{
    struct Case
    {
        const char* declaration;
        const char* use;
        const char* words;
    };
    const Case cases[] = {
        {"cbuffer Far : register(b14) { float4 value; };", "value", "'Far': register b14 is beyond b13"},
        {"Texture2D far : register(t16);", "far.Load(int3(0, 0, 0))", "'far': register t16 is beyond t15"},
        {"Texture2D near : register(t0); SamplerState far : register(s16);", "near.Sample(far, float2(0, 0))",
         "'far': register s16 is beyond s15"},
        {"Texture2D spaced : register(t0, space1);", "spaced.Load(int3(0, 0, 0))",
         "'spaced': register spaces aren't supported, space1"},
        {"Texture2D many[4] : register(t13);", "many[3].Load(int3(0, 0, 0))",
         "'many[3]': register t16 is beyond t15"},
        {"RWStructuredBuffer<float4> output : register(u0);", "output[0]",
         "'output': unordered access isn't supported"},
        {"Buffer<float4> list : register(t0);", "list.Load(0)",
         "'list': Buffer isn't supported; use a StructuredBuffer or a texture"},
        {"cbuffer One : register(b2) { float4 a; }; cbuffer Two : register(b2) { float4 b; };", "a + b",
         "register b2 is used for two different resources"},
        {"Texture2D image : register(t0); SamplerState read : register(s3); "
         "SamplerComparisonState compare : register(s3);",
         "image.SampleCmpLevelZero(compare, float2(0, 0), 0) + image.Sample(read, float2(0, 0))",
         "register s3 is used for two different resources"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.declaration);
        std::string words = failure(plainVertex + one.declaration + "\nfloat4 PS() : SV_Target { return " +
                                    one.use + "; }\n");
        EXPECT_NE(words.find(std::string("error: ") + one.words + "\n"), std::string::npos) << words;
    }
}

TEST_F(ShaderErrorsTest, ArraysBeyondTheRegistersAreRefused)
{
    const auto textOf = [](const std::string& declarations, const std::string& body) {
        return plainVertex + declarations + "\nfloat4 PS(float4 p : SV_Position) : SV_Target\n{\n" + body +
               "\n    [loop] for (int i = 0; i < int(p.y); ++i)\n        a[i] = p.x + i;\n"
               "    return a[int(p.x)] + 1;\n}\n";
    };
    const auto words = [](int line, const std::string& largest, int registers, int sum) {
        return "test.hlsl:" + std::to_string(line) + ": error: " + largest + " takes " +
               std::to_string(registers) + " registers of four components, all arrays take " +
               std::to_string(sum) + "; a stage has 4096\n";
    };
    compile(textOf("", "float a[4096];"));
    compile(textOf("void fill(inout float b[2500], float x) { b[int(x)] = x; }",
                   "float a[2500]; fill(a, p.x); fill(a, p.y);"));
    EXPECT_EQ(failure(textOf("", "float a[10000];")), words(5, "'a'", 10000, 10000));
    EXPECT_EQ(failure(textOf("#define COUNT 5000", "float a[COUNT];")),
              words(1, "an array of 5000", 5000, 5000));
    EXPECT_EQ(failure(textOf("static float4 kept[4000];",
                             "float4 a[97]; kept[int(p.y)] = p; a[0] = kept[int(p.x)];")),
              words(2, "'kept'", 4000, 4097));
    EXPECT_EQ(failure(textOf("struct S { float4x4 m[1100]; float x; };",
                             "float a[4]; S s; s.m[int(p.y)] = p.x; a[0] = s.m[int(p.x)][1].x + s.x;")),
              words(2, "'m'", 4400, 4404));
}

TEST_F(ShaderErrorsTest, UnknownOutputsAreRefused)
{
    EXPECT_EQ(failure(plainVertex + "float4 PS() : RESULT { return 1; }\n"),
              "test.hlsl:2: error: pixel output 'RESULT0' is none of SV_Target0 to SV_Target7\n");
}

TEST_F(ShaderErrorsTest, WarningsAloneAreNoFailure)
{
    std::string errors = "left over";
    const std::string text = "#pragma unknown\n" + plainVertex +
                             "float4 PS(float4 p : SV_Position) : SV_Target\n{\n    float2 uv = p;\n"
                             "    return uv.xyxy;\n}\n";
    const ShaderProgramPtr program = cache().get(requestOf(text), errors);
    ASSERT_TRUE(program);
    EXPECT_EQ(errors, "");
    EXPECT_EQ(program->describeWarnings("test.hlsl"),
              "test.hlsl:1: warning: unknown pragma 'unknown' is ignored\n"
              "test.hlsl:5: warning: 'float4' is cut to 'float2'\n");
    const ShaderProgramPtr decoded = decodeShaderProgram({}, encodeShaderProgram({}, *program));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->warnings, program->warnings);
}

} // namespace

} // namespace helvantine
