// SPDX-License-Identifier: MIT
#include "ShaderFixture.h"

namespace helvantine
{

namespace
{

using ShaderLinkTest = ShaderTest;

const std::string wideVertex = R"(
struct VertexOutput
{
    float4 position : SV_Position;
    float4 color : COLOR0;
    float2 uv0 : TEXCOORD0;
    float4x3 transform : TEXCOORD1;
    nointerpolation uint id : ID;
    float2 taps[2] : TAP3;
};
VertexOutput VS(float4 p : POSITION) { VertexOutput o = (VertexOutput)0; o.position = p; return o; }
)";

TEST_F(ShaderLinkTest, InputsFindTheirOutputsBySemantic)
{
    ShaderProgramPtr program = compile(wideVertex + R"(
struct Input
{
    float2 taps[2] : TAP3;
    float4x3 transform : TexCoord1;
    nointerpolation uint id : ID0;
    float4 position : SV_Position;
    float2 uv0 : TEXCOORD;
};
float4 PS(Input i) : SV_Target
{
    return i.uv0.xyxy + i.transform[2].xyzz + i.id + i.taps[1].xyxy + i.position;
}
)");

    NamedModule vertex(program->vertexWords);
    NamedModule pixel(program->pixelWords);
    const std::pair<const char*, const char*> pairs[] = {
        {"i.uv0", "@entryPointOutput.uv0"},
        {"i.transform", "@entryPointOutput.transform"},
        {"i.id", "@entryPointOutput.id"},
        {"i.taps[1]", "@entryPointOutput.taps[1]"},
    };
    for (const auto& [input, output] : pairs) {
        SCOPED_TRACE(input);
        EXPECT_NE(pixel.locationOf(input), -1);
        EXPECT_EQ(pixel.locationOf(input), vertex.locationOf(output));
    }
}

TEST_F(ShaderLinkTest, InputsThatNothingWritesAreZero)
{
    ShaderProgramPtr program = compile(plainVertex + R"(
float4 PS(float2 lost : TEXCOORD5, float4x4 m : LOST, nointerpolation uint4 ids : IDS) : SV_Target
{
    return lost.xyxy + m[int(lost.x) & 3] + ids[ids.x & 3];
}
)");

    NamedModule pixel(program->pixelWords);
    for (const char* name : {"lost", "m", "ids"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(pixel.storageOf(name), spv::StorageClass::Private);
        EXPECT_EQ(pixel.locationOf(name), -1);
        const SpirvInstruction* initial = pixel.find(pixel.find(pixel.idOf(name))->operand(3));
        ASSERT_NE(initial, nullptr);
        EXPECT_EQ(initial->op, spv::Op::OpConstantNull);
    }
}

TEST_F(ShaderLinkTest, NumberOfComponentsMayDiffer)
{
    ShaderProgramPtr program = compile(wideVertex + R"(
float4 PS(float4 wide : TEXCOORD0, float3 narrow : COLOR0, nointerpolation uint2 ids : ID, float one : TAP4)
    : SV_Target
{
    return wide + narrow.xyzz + ids.xyxy + one;
}
)");

    // Validation has passed; what is left to see is that the stages agree about what crosses.
    NamedModule vertex(program->vertexWords);
    NamedModule pixel(program->pixelWords);
    size_t inputs = 0;
    for (const SpirvInstruction& one : pixel.instructions) {
        if (one.op != spv::Op::OpVariable || one.operand(2) != uint32_t(spv::StorageClass::Input))
            continue;
        ++inputs;
        uint32_t location = pixel.decoration(one.resultId(), spv::Decoration::Location).value_or(99);
        const SpirvInstruction* type = pixel.findPointee(one);
        bool isUint = type->op == spv::Op::OpTypeInt;
        EXPECT_EQ(pixel.decoration(one.resultId(), spv::Decoration::Flat).has_value(), isUint);
        uint32_t components = type->op == spv::Op::OpTypeVector ? type->operand(2) : 1;
        uint32_t written = isUint ? 1 : int(location) == vertex.locationOf("@entryPointOutput.color") ? 4 : 2;
        EXPECT_EQ(components, written);
    }
    EXPECT_EQ(inputs, 4u);
    EXPECT_EQ(pixel.storageOf("wide"), spv::StorageClass::Private);
}

TEST_F(ShaderLinkTest, TypesThatCannotMeetAreErrors)
{
    EXPECT_EQ(failure(wideVertex +
                      "float4 PS(float4 a : COLOR, float4 b : COLOR0) : SV_Target { return a + b; }\n"),
              "test.hlsl:5: error: 'COLOR0' is an input of the pixel stage twice\n");
    EXPECT_EQ(failure(wideVertex +
                      "float4 PS(nointerpolation uint4 color : COLOR0) : SV_Target { return color; }\n"),
              "test.hlsl:5: error: 'COLOR0' is float in the vertex stage and uint in the pixel stage\n");
    EXPECT_EQ(
        failure(wideVertex + "float4 PS(float4x4 m : TEXCOORD1) : SV_Target { return m[0]; }\n"),
        "test.hlsl:7: error: 'TEXCOORD1' has another shape in the vertex stage than its 4 rows of 4 in the "
        "pixel stage\n");
}

} // namespace

} // namespace helvantine
