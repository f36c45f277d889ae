// SPDX-License-Identifier: MIT
#include "ShaderFixture.h"

#include <algorithm>

namespace helvantine
{

namespace
{

using ShaderProgramTest = ShaderTest;

constexpr auto buffer = ShaderBindingKind::ConstantBuffer;
constexpr auto texture = ShaderBindingKind::Texture;
constexpr auto sampler = ShaderBindingKind::Sampler;
constexpr auto noDimension = TextureDimension::None;
constexpr auto floats = ShaderComponentType::Float;
constexpr uint8_t bothStages = vertexStageBit | pixelStageBit;

std::string describe(const std::vector<ShaderDeclaration>& declarations)
{
    std::string text;
    for (const ShaderDeclaration& one : declarations)
        text += one.name + " kind " + std::to_string(int(one.kind)) + " stages " +
                std::to_string(one.stages) + " number " + std::to_string(one.number) + " line " +
                std::to_string(one.line) + "\n";
    return text;
}

TEST_F(ShaderProgramTest, RegistersLandAtBindingsByKindAndStage)
{
    ShaderProgramPtr program = compile(R"(
cbuffer Frame : register(b0) { float4x4 matrix0 : packoffset(c0); float2 size : packoffset(c4.x); };
cbuffer First : register(b1) { float4 taps[4] : packoffset(c0); float weights[3] : packoffset(c4); };
cbuffer Second : register(b1) { float other : packoffset(c0.x); };
Texture2D picture : register(t0);
TextureCube sky : register(t15);
Texture2D<uint4> ids : register(t3);
SamplerState smooth : register(s0);
SamplerState rough : register(s15);
float4 VS(float4 p : POSITION) : SV_Position { return mul(p, matrix0) + picture.SampleLevel(rough, p.xy, 0); }
float4 PS(float4 p : SV_Position) : SV_Target
{
    return picture.Sample(smooth, p.xy * size) + picture.Sample(rough, p.xy) + sky.Sample(smooth, p.xyz)
        + taps[2] * weights[1] + ids.Load(int3(0, 0, 0));
}
)");

    const std::vector<ShaderBinding> expected = {
        {buffer, noDimension, floats, false, vertexStageBit, 0, vertexConstantBindingBase, 64 + 8},
        {buffer, noDimension, floats, false, pixelStageBit, 0, pixelConstantBindingBase, 64 + 8},
        {buffer, noDimension, floats, false, pixelStageBit, 1, pixelConstantBindingBase + 1, 64 + 36},
        {texture, TextureDimension::Texture2D, floats, false, bothStages, 0, textureBindingBase, 0},
        {texture, TextureDimension::Texture2D, ShaderComponentType::Uint, false, pixelStageBit, 3,
         textureBindingBase + 3, 0},
        {texture, TextureDimension::TextureCube, floats, false, pixelStageBit, 15, textureBindingBase + 15,
         0},
        {sampler, noDimension, floats, false, bothStages, 15, samplerBindingBase + 15, 0, 1 << 0},
        {sampler, noDimension, floats, false, pixelStageBit, 0, uint16_t(samplerPairBinding(0, 0)), 0,
         1 << 0},
        {sampler, noDimension, floats, false, pixelStageBit, 0, uint16_t(samplerPairBinding(0, 15)), 0,
         1 << 15},
    };
    EXPECT_EQ(program->bindings, expected);
    EXPECT_EQ(program->findBinding(textureBindingBase + 3), &program->bindings[4]);
    EXPECT_EQ(program->findBinding(textureBindingBase + 4), nullptr);
}

TEST_F(ShaderProgramTest, ConstantsLieWhereDirect3DPutsThem)
{
    ShaderProgramPtr program = compile(plainVertex + R"(
struct Light { float3 color[2]; float power; };
cbuffer Packed : register(b0)
{
    float a;
    float3 b;
    float w[3];
    float x;
    float3x3 rotation;
    float y;
    Light lights[2];
    float z;
    float2 u;
};
cbuffer Placed : register(b1)
{
    float v[3] : packoffset(c1);
    float after : packoffset(c4);
    Light inner : packoffset(c5);
};
float4 PS() : SV_Target
{
    return a + b.xyzz + w[1] + x + rotation[0].xyzz + y + lights[1].color[1].xyzz + z + u.xyxy + v[1] + after
        + inner.power;
}
)");

    NamedModule pixel(program->pixelWords);
    auto offsetsOf = [&pixel](const char* name) {
        std::vector<uint32_t> offsets;
        uint32_t id = pixel.idOf(name);
        while (auto offset = pixel.memberDecoration(id, uint32_t(offsets.size()), spv::Decoration::Offset))
            offsets.push_back(*offset);
        return offsets;
    };
    EXPECT_EQ(offsetsOf("Packed"), (std::vector<uint32_t>{0, 4, 16, 52, 64, 108, 112, 176, 180}));
    EXPECT_EQ(offsetsOf("Light"), (std::vector<uint32_t>{0, 28}));
    EXPECT_EQ(offsetsOf("Placed"), (std::vector<uint32_t>{16, 64, 80}));
    ASSERT_EQ(program->bindings.size(), 2u);
    EXPECT_EQ(program->bindings[0].size, 188u);
    EXPECT_EQ(program->bindings[1].size, 112u);
}

TEST_F(ShaderProgramTest, EveryKindOfTextureIsTold)
{
    const std::pair<const char*, TextureDimension> cases[] = {
        {"Texture1D", TextureDimension::Texture1D},
        {"Texture2DArray", TextureDimension::Texture2DArray},
        {"Texture3D", TextureDimension::Texture3D},
        {"Texture2DMS<float4>", TextureDimension::Texture2DMultisampled},
        {"TextureCubeArray", TextureDimension::TextureCubeArray},
    };
    for (const auto& [type, dimension] : cases) {
        SCOPED_TRACE(type);
        bool multisampled = dimension == TextureDimension::Texture2DMultisampled;
        std::string size = dimension == TextureDimension::Texture1D ? "float w; thing.GetDimensions(w);"
                           : multisampled ? "float w, h, s; thing.GetDimensions(w, h, s);"
                           : dimension == TextureDimension::Texture2DArray ||
                                   dimension == TextureDimension::Texture3D ||
                                   dimension == TextureDimension::TextureCubeArray
                               ? "float w, h, d; thing.GetDimensions(w, h, d);"
                               : "float w, h; thing.GetDimensions(w, h);";
        ShaderProgramPtr program = compile(plainVertex + type + " thing : register(t2);\n" +
                                           "float4 PS() : SV_Target { " + size + " return w; }\n");
        ASSERT_EQ(program->bindings.size(), 1u);
        EXPECT_EQ(program->bindings[0].dimension, dimension);
    }
}

TEST_F(ShaderProgramTest, StructuredBuffersSitOnTextureRegisters)
{
    ShaderProgramPtr program = compile(plainVertex + "StructuredBuffer<float4> list : register(t4);\n"
                                                     "float4 PS() : SV_Target { return list[1]; }\n");

    ASSERT_EQ(program->bindings.size(), 1u);
    EXPECT_EQ(program->bindings[0].kind, ShaderBindingKind::StructuredBuffer);
    EXPECT_EQ(program->bindings[0].binding, textureBindingBase + 4);
}

TEST_F(ShaderProgramTest, TextureThatIsSampledAndComparedIsOneBinding)
{
    for (const char* place : {" : register(t5)", ""}) {
        SCOPED_TRACE(place);
        ShaderProgramPtr program = compile(plainVertex + "Texture2D shadow" + place + R"(;
SamplerState smooth : register(s0);
SamplerComparisonState compare : register(s1);
float4 PS(float4 p : SV_Position) : SV_Target
{
    return shadow.Sample(smooth, p.xy) + shadow.SampleCmp(compare, p.xy, 0.5);
}
)");
        ASSERT_EQ(program->bindings.size(), 3u);
        EXPECT_EQ(program->bindings[0].binding, textureBindingBase + (place[0] ? 5u : 0u));
        EXPECT_TRUE(program->bindings[0].comparison);
        EXPECT_FALSE(program->bindings[1].comparison) << "s0 filters";
        EXPECT_TRUE(program->bindings[2].comparison) << "s1 compares";
    }
}

TEST_F(ShaderProgramTest, ASamplerOfManyTexturesKeepsWithinWhatDevicesOffer)
{
    std::string text = plainVertex + "SamplerState one : register(s2), other : register(s3);\n";
    std::string sum;
    for (int i = 0; i < 12; ++i) {
        const std::string n = std::to_string(i);
        text += "Texture2D t" + n + " : register(t" + n + ");\n";
        sum += "t" + n + ".Sample(one, p.xy) + t" + n + ".Sample(other, p.xy) + ";
    }
    ShaderProgramPtr program =
        compile(text + "float4 PS(float4 p : SV_Position) : SV_Target { return " + sum + "0; }\n");
    size_t samplers = 0;
    uint16_t textures[2] = {};
    for (const ShaderBinding& binding : program->bindings) {
        if (binding.kind != sampler)
            continue;
        ++samplers;
        textures[binding.slot - 2] |= binding.textures;
    }
    EXPECT_EQ(samplers, samplerRegisterCount);
    EXPECT_EQ(textures[0], 0x0FFF) << "those without one of their own share it";
    EXPECT_EQ(textures[1], 0x0FFF);
}

TEST_F(ShaderProgramTest, DeclarationsTellNamesRegistersAndLines)
{
    ShaderProgramPtr program = compile(R"(
cbuffer Frame : register(b3) { float4x4 turn; float4 unread; };
Texture2D picture : register(t5);
Texture2D other : register(t5);
SamplerState smooth;
struct Particle { float4 color; };
StructuredBuffer<Particle> particles : register(t9);
float4 VS(float4 p : POSITION, float2 uv : TexCoord1) : SV_Position { return mul(p, turn) + uv.xyxy; }
float4 PS(float4 p : SV_Position) : SV_Target
{
    return picture.Sample(smooth, p.xy) + other.Sample(smooth, p.xy) + particles[2].color;
}
)");
    using Kind = ShaderDeclarationKind;
    const std::vector<ShaderDeclaration> expected = {
        {Kind::ConstantBuffer, vertexStageBit, 3, "Frame", 2},
        {Kind::Texture, pixelStageBit, 5, "picture", 3},
        {Kind::Sampler, pixelStageBit, 0, "smooth", 5},
        {Kind::Texture, pixelStageBit, 5, "other", 4},
        {Kind::StructuredBuffer, pixelStageBit, 9, "particles", 7},
        {Kind::VertexInput, vertexStageBit, 0, "POSITION", 8},
        {Kind::VertexInput, vertexStageBit, 1, "TEXCOORD", 8},
    };
    EXPECT_TRUE(std::is_permutation(program->declarations.begin(), program->declarations.end(),
                                    expected.begin(), expected.end()))
        << describe(program->declarations);
}

TEST_F(ShaderProgramTest, VertexInputsAreListedBySemantic)
{
    ShaderProgramPtr program = compile(plainPixel + R"(
struct Input
{
    float4x3 instance : Instance2;
    int2 joints : JOINTS;
    float2 uv1 : TexCoord1;
    float3 position : POSITION0;
    uint id : SV_VertexID;
};
float4 VS(Input i) : SV_Position
{
    return float4(i.position, 1) + i.uv1.xyxy + i.joints.xyxy + i.instance[3].xyzz + i.id;
}
)");

    const std::vector<ShaderVertexInput> expected = {
        {"INSTANCE", 2, 0, floats, 3},
        {"INSTANCE", 3, 1, floats, 3},
        {"INSTANCE", 4, 2, floats, 3},
        {"INSTANCE", 5, 3, floats, 3},
        {"JOINTS", 0, 4, ShaderComponentType::Int, 2},
        {"TEXCOORD", 1, 5, floats, 2},
        {"POSITION", 0, 6, floats, 3},
    };
    EXPECT_EQ(program->vertexInputs, expected);
    EXPECT_EQ(program->findVertexInput("TEXCOORD", 1), &program->vertexInputs[5]);
    EXPECT_EQ(program->findVertexInput("TEXCOORD", 0), nullptr);
}

TEST_F(ShaderProgramTest, PixelOutputsGoToTheirTargets)
{
    ShaderProgramPtr program = compile(plainVertex + R"(
struct Output { float4 third : SV_TARGET3; uint2 first : SV_Target1; float depth : SV_Depth; };
Output PS() { Output o; o.third = 1; o.first = 2; o.depth = 0.5; return o; }
)");

    const std::vector<ShaderPixelOutput> expected = {{1, ShaderComponentType::Uint, 2}, {3, floats, 4}};
    EXPECT_EQ(program->pixelOutputs, expected);
    EXPECT_TRUE(program->writesDepth);
    NamedModule pixel(program->pixelWords);
    EXPECT_EQ(pixel.locationOf("@entryPointOutput.third"), 3);
    EXPECT_EQ(pixel.locationOf("@entryPointOutput.first"), 1);
}

TEST_F(ShaderProgramTest, ConstantTablesAreNotFilledAtEachUse)
{
    ShaderProgramPtr program = compile(plainVertex + R"(
static const float bayer[4] = { 0, 32, 8, 40 };
float look(int i) { static const float2 taps[3] = { float2(0, 1), float2(2, 3), float2(4, 5) }; return taps[i % 3].y; }
float4 PS(float4 p : SV_Position) : SV_Target
{
    float result = 0;
    [loop] for (int i = 0; i < int(p.x); ++i)
        result += look(i) * bayer[i & 3];
    float changing[2] = { 1, 2 };
    changing[int(p.y) & 1] = p.x;
    return result + changing[int(p.z) & 1];
}
)");

    NamedModule pixel(program->pixelWords);
    size_t tables = 0;
    size_t filled = 0;
    for (const SpirvInstruction& one : pixel.instructions) {
        const SpirvInstruction* stored = one.op == spv::Op::OpStore ? pixel.find(one.operand(1)) : nullptr;
        filled += stored && stored->op == spv::Op::OpConstantComposite;
        bool isLocal =
            one.op == spv::Op::OpVariable && one.operand(2) == uint32_t(spv::StorageClass::Function);
        tables += isLocal && one.operands.size() == 4;
    }
    EXPECT_EQ(tables, 2u) << "bayer and taps have their values from the start";
    EXPECT_EQ(filled, 1u) << "only the array that is written to is filled by the code";
}

TEST_F(ShaderProgramTest, DriversSeePlainSpirv)
{
    ShaderProgramPtr program = compile(plainVertex + plainPixel);

    for (const auto* words : {&program->vertexWords, &program->pixelWords}) {
        NamedModule module(*words);
        EXPECT_EQ(module.count(spv::Op::OpExtension), 0u);
        EXPECT_EQ(module.count(spv::Op::OpDecorateString), 0u);
    }
    EXPECT_EQ(program->vertexEntry, "VS");
    EXPECT_NE(program->hash, compile(plainVertex + "float4 PS() : SV_Target { return 2; }\n")->hash);
    EXPECT_EQ(program->hash, compile("// a comment\n" + plainVertex + plainPixel)->hash)
        << "equal modules are equal programs";
}

} // namespace

} // namespace helvantine
