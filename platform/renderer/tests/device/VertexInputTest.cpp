// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/core/Report.h>
#include <helvantine/renderer/IndexBuffer.h>

namespace helvantine::test
{

namespace
{

const Vec4 green(0, 1, 0, 1);

class VertexInputTest : public DeviceTest
{
protected:
    static SmartRef<VertexBuffer> makeBuffer(const void* data, size_t size, size_t stride)
    {
        return createVertexBuffer(data, static_cast<unsigned>(size), static_cast<unsigned>(stride),
                                  D3D11_USAGE_IMMUTABLE, 0, 0);
    }

    Image drawStrip(Shader& shader, VertexDeclaration& declaration,
                    const std::vector<SmartRef<VertexBuffer>>& buffers)
    {
        return draw([&] {
            bindDefaults();
            shader.bind(&declaration);
            for (unsigned slot = 0; slot < buffers.size(); ++slot)
                buffers[slot]->bind(slot);
            renderer().getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
            renderer().getContext()->Draw(4, 0);
            for (unsigned slot = 0; slot < buffers.size(); ++slot)
                buffers[slot]->unbind(slot);
        });
    }
};

constexpr float corners[] = {-1, 1, 1, 1, -1, -1, 1, -1};

TEST_F(VertexInputTest, ElementsMeetInputsByNameAndIndexOverSeveralBuffers)
{
    const SmartRef<Shader> shader = makeShaderFromText(R"(
struct Input
{
    float4 second : TexCoord1;
    float4 first : TEXCOORD0;
    float4 position : POSITION;
    uint4 number : NUMBER;
};
struct Output { float4 position : SV_Position; float4 color : COLOR; };
Output VS(Input v)
{
    Output o;
    o.position = v.position; // z and w come from the declaration's two numbers: 0 and 1
    o.color = float4(v.first.r, v.second.g, v.number.x == 7 ? 1 : 0, v.position.w);
    return o;
}
float4 PS(Output p) : SV_Target { return p.color; }
)");
    const D3D11_INPUT_ELEMENT_DESC elements[] = {
        {"position", 0, DXGI_FORMAT_R32G32_FLOAT},      {"UNUSED", 3, DXGI_FORMAT_R32G32B32_FLOAT, 1},
        {"TexCoord", 1, DXGI_FORMAT_R8G8B8A8_UNORM, 1}, {"TEXCOORD", 0, DXGI_FORMAT_B8G8R8A8_UNORM, 1},
        {"NUMBER", 0, DXGI_FORMAT_R32_UINT, 1, 20},
    };
    const SmartRef<VertexDeclaration> declaration = createVertexDeclaration(elements, 5);
    ASSERT_TRUE(declaration);
    struct
    {
        float unused[3];
        uint8_t second[4]; // R, G, B, A
        uint8_t first[4];  // B, G, R, A
        uint32_t number;
    } stream[4];
    for (auto& vertex : stream)
        vertex = {{}, {9, 0x80, 9, 9}, {9, 9, 0x40, 9}, 7};
    const Image image =
        drawStrip(*shader, *declaration,
                  {makeBuffer(corners, sizeof corners, 8), makeBuffer(stream, sizeof stream, 24)});
    const auto pixel = image.at8(20, 10);
    EXPECT_NEAR(pixel[0], 0x40, 1);
    EXPECT_NEAR(pixel[1], 0x80, 1);
    EXPECT_EQ(pixel[2], 255);
    EXPECT_EQ(pixel[3], 255);
}

TEST_F(VertexInputTest, InputsWithoutAnElementOrABufferReadZeroAndOne)
{
    const SmartRef<Shader> shader = makeShaderFromText(R"(
struct Output { float4 position : SV_Position; float4 color : COLOR; };
Output VS(float2 position : POSITION, float4 missing : COLOR5, uint4 number : NUMBER)
{
    Output o;
    o.position = float4(position, 0, 1);
    o.color = float4(missing.x, missing.w, number.x, number.w);
    return o;
}
float4 PS(Output p) : SV_Target { return p.color; }
)");
    const D3D11_INPUT_ELEMENT_DESC elements[] = {{"POSITION", 0, DXGI_FORMAT_R32G32_FLOAT},
                                                 {"COLOR", 5, DXGI_FORMAT_R32G32B32A32_FLOAT, 3}};
    const auto buffer = makeBuffer(corners, sizeof corners, 8);
    for (const unsigned count : {1u, 2u}) { // without the element, then without its buffer
        const SmartRef<VertexDeclaration> declaration = createVertexDeclaration(elements, count);
        EXPECT_EQ(drawStrip(*shader, *declaration, {buffer}).at(5, 5), green) << count;
    }
}

TEST_F(VertexInputTest, VerticesBeyondTheBufferAreHarmless)
{
    const D3D11_INPUT_ELEMENT_DESC element = {"POSITION", 0, DXGI_FORMAT_R32G32_FLOAT};
    const SmartRef<VertexDeclaration> declaration = createVertexDeclaration(&element, 1);
    drawStrip(*m_colorShader, *declaration, {makeBuffer(corners, 8, 8)});
}

TEST_F(VertexInputTest, APixelStageMayReadLessThanTheVertexStageWrites)
{
    const SmartRef<Shader> shader = makeShaderFromText(R"(
struct Output { float4 position : SV_Position; float4 a : TEXCOORD0; float4 b : TEXCOORD1; };
Output VS(float3 position : POSITION, float4 color : COLOR)
{
    Output o;
    o.position = float4(position, 1);
    o.a = float4(1, 0, 0, 1);
    o.b = color;
    return o;
}
float4 PS(float4 b : TEXCOORD1, float4 never : TEXCOORD7) : SV_Target { return b + never; }
)");
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*shader, makeQuad(green));
    });
    EXPECT_EQ(image.at(5, 5), green);
}

TEST_F(VertexInputTest, ProgramsThatDifferInASemanticAloneAreTwo)
{
    const auto makeReader = [this](const std::string& semantic) {
        return makeShaderFromText(
            "struct Output { float4 position : SV_Position; float4 color : COLOR; };"
            "Output VS(float3 position : POSITION, float4 color : " +
            semantic +
            ") { Output o; o.position = float4(position, 1); o.color = color; return o; }"
            "float4 PS(Output p) : SV_Target { return p.color; }");
    };
    const SmartRef<Shader> first = makeReader("COLOR0");
    const SmartRef<Shader> second = makeReader("COLOR1");
    const D3D11_INPUT_ELEMENT_DESC elements[] = {{"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT},
                                                 {"COLOR", 0, DXGI_FORMAT_R8G8B8A8_UNORM},
                                                 {"COLOR", 1, DXGI_FORMAT_R8G8B8A8_UNORM}};
    const SmartRef<VertexDeclaration> declaration = createVertexDeclaration(elements, 3);
    struct
    {
        float x, y, z;
        uint8_t colors[2][4] = {{255, 0, 0, 255}, {0, 255, 0, 255}};
    } const stream[] = {{-1, 1, 0}, {1, 1, 0}, {-1, -1, 0}, {1, -1, 0}};
    const auto buffer = makeBuffer(stream, sizeof stream, sizeof stream[0]);
    EXPECT_EQ(drawStrip(*first, *declaration, {buffer}).at(5, 5), Vec4(1, 0, 0, 1));
    EXPECT_EQ(drawStrip(*second, *declaration, {buffer}).at(5, 5), green);
}

TEST_F(VertexInputTest, WrongDescriptionsGiveNull)
{
    const D3D11_INPUT_ELEMENT_DESC wrong[] = {
        {nullptr, 0, DXGI_FORMAT_R32G32_FLOAT},      {"A", 0, DXGI_FORMAT_BC1_UNORM},
        {"A", 0, DXGI_FORMAT_R32G32_FLOAT, 16},      {"A", 0, DXGI_FORMAT_R32G32_FLOAT, 0, 2},
        {"A", 0, DXGI_FORMAT_R32G32_FLOAT, 0, 4096},
    };
    takeProblems();
    for (const D3D11_INPUT_ELEMENT_DESC& element : wrong)
        EXPECT_EQ(createVertexDeclaration(&element, 1), nullptr);
    EXPECT_EQ(createVertexDeclaration(nullptr, 2), nullptr);
    const uint32_t bytes[4] = {};
    EXPECT_EQ(createVertexBuffer(nullptr, 16, 4, D3D11_USAGE_IMMUTABLE, 0, 0), nullptr);
    EXPECT_EQ(createVertexBuffer(bytes, 0, 4, D3D11_USAGE_IMMUTABLE, 0, 0), nullptr);
    EXPECT_EQ(createVertexBuffer(bytes, 16, 4096, D3D11_USAGE_IMMUTABLE, 0, 0), nullptr);
    EXPECT_EQ(createVertexBuffer(bytes, 16, 4, D3D11_USAGE_STAGING, 0, 0), nullptr);
    EXPECT_EQ(createIndexBuffer(bytes, 16, D3D11_USAGE_IMMUTABLE, DXGI_FORMAT_R8G8B8A8_UNORM), nullptr);
    const std::vector<Problem> problems = takeProblems();
    ASSERT_EQ(problems.size(), 11u);
    EXPECT_EQ(problems[2].text, "no vertex declaration with element 0: \"A\", format 16, slot 16, appended");
    EXPECT_EQ(problems[8].text,
              "no vertex buffer of 16 bytes, stride 4096, usage 1, access 0, misc 0, with data: "
              "at most 1073741824 bytes, stride 2048");
}

} // namespace

} // namespace helvantine::test
