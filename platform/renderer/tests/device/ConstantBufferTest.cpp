// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/core/Report.h>

#include <cstring>

namespace helvantine::test
{

namespace
{

constexpr const char* pixelConstants = "cbuffer Values : register(b1) { float4 value; };";

class ConstantBufferTest : public DeviceTest
{
};

TEST_F(ConstantBufferTest, EachDrawSeesTheBytesAsTheyStoodThen)
{
    const SmartRef<Shader> shader = makeShader("return value;", pixelConstants);
    const SmartRef<ConstantBuffer> buffer = makeConstants(Vec4(1, 0, 0, 1));
    for (int frame = 0; frame < 6; ++frame) {
        const Image image = draw([&] {
            bindDefaults();
            buffer->bindPS(1);
            setConstants(*buffer, Vec4(1, 0, 0, 1));
            drawQuad(*shader, makeQuad({}, 0.5f, -1, 1, 0, -1));
            setConstants(*buffer, Vec4(0, 1, 0, 1));
            drawQuad(*shader, makeQuad({}, 0.5f, 0, 1, 1, -1));
        });
        EXPECT_EQ(image.at(0, 0), Vec4(1, 0, 0, 1));
        EXPECT_EQ(image.at(36, 0), Vec4(0, 1, 0, 1));
    }
}

/// Draws a column at a time; between two draws one thing changes, and nothing is bound anew.
TEST_F(ConstantBufferTest, BytesThatChangeBetweenDrawsAreSeenWhereTheyAreBound)
{
    const SmartRef<Shader> shader = makeShader("return p.color * value;", pixelConstants);
    const SmartRef<ConstantBuffer> constants = makeConstants(Vec4(1, 0, 0, 1));
    const SmartRef<VertexBuffer> vertices = createVertexBuffer(
        nullptr, sizeof(Vertex) * 16, sizeof(Vertex), D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE, 0);
    const auto writeColumns = [&](const Vec4& color) {
        auto* out = static_cast<Vertex*>(vertices->map(D3D11_MAP_WRITE_DISCARD));
        for (int column = 0; column < 4; ++column) {
            const auto quad = makeQuad(color, 0.5f, -1.0f + 0.5f * column, 1, -0.5f + 0.5f * column, -1);
            out = std::copy(quad.begin(), quad.end(), out);
        }
        vertices->unmap();
    };
    writeColumns(Vec4(1, 1, 1, 1));
    const Image image = draw([&] {
        bindDefaults();
        shader->bind(m_declaration.get());
        constants->bindPS(1);
        vertices->bind(0);
        ID3D11DeviceContext& context = *renderer().getContext();
        context.IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
        context.Draw(4, 0);
        setConstants(*constants, Vec4(0, 1, 0, 1));
        context.Draw(4, 4);
        writeColumns(Vec4(0, 0.5f, 0, 1));
        context.Draw(4, 8);
        ASSERT_TRUE(constants->create(16)); // zeros
        context.Draw(4, 12);
    });
    EXPECT_EQ(image.at(4, 11), Vec4(1, 0, 0, 1));
    EXPECT_EQ(image.at(14, 11), Vec4(0, 1, 0, 1));
    EXPECT_EQ(image.at8(23, 11)[1], 128);
    EXPECT_EQ(image.at(32, 11), Vec4(0, 0, 0, 0));
}

TEST_F(ConstantBufferTest, WhatIsNotWrittenStays)
{
    const SmartRef<Shader> shader = makeShader("return value;", pixelConstants);
    const SmartRef<ConstantBuffer> buffer = new ConstantBuffer;
    ASSERT_TRUE(buffer->create(20)); // rounded up to 32
    const Image image = draw([&] {
        bindDefaults();
        buffer->bindPS(1);
        auto* bytes = static_cast<float*>(buffer->map());
        EXPECT_EQ(bytes[2], 0.0f) << "a new buffer is zero";
        bytes[0] = 1.0f;
        bytes[7] = 0.0f;
        buffer->unmap();
        drawQuad(*shader, makeQuad({}));
        bytes = static_cast<float*>(buffer->map());
        EXPECT_EQ(bytes[0], 1.0f) << "a mapped buffer shows its bytes";
        bytes[1] = 1.0f;
        buffer->unmap();
        drawQuad(*shader, makeQuad({}));
    });
    EXPECT_EQ(image.at(7, 7), Vec4(1, 1, 0, 0));
}

TEST_F(ConstantBufferTest, StagesHaveSlotsOfTheirOwn)
{
    const SmartRef<Shader> shader = makeShaderFromText(R"(
cbuffer VertexValues : register(b1) { float4 offset; };
cbuffer PixelValues : register(b2) { float4 unused; float4 color; };
float4 VS(float3 position : POSITION) : SV_Position { return float4(position, 1) + offset; }
cbuffer Other : register(b1) { float4 add; };
float4 PS() : SV_Target { return color + add; }
)");
    const SmartRef<ConstantBuffer> offset = makeConstants(Vec4(1, 0, 0, 0));
    const SmartRef<ConstantBuffer> add = makeConstants(Vec4(0, 0, 1, 1));
    const Image image = draw([&] {
        bindDefaults();
        offset->bindVS(1);
        add->bindPS(1);
        drawQuad(*shader, makeQuad({})); // nothing in b2: reads as zero
    });
    EXPECT_EQ(image.at(3, 11), Vec4(0, 0, 0, 0));
    EXPECT_EQ(image.at(33, 11), Vec4(0, 0, 1, 1));
}

/// 14 buffers in each stage, 16 textures and 16 samplers: more than can be pushed on every device.
TEST_F(ConstantBufferTest, AProgramMayUseEveryRegister)
{
    std::string globals, vertexSum = "0", pixelSum = "0";
    for (int i = 0; i < 16; ++i) {
        const std::string n = std::to_string(i);
        globals +=
            "Texture2D t" + n + " : register(t" + n + "); SamplerState s" + n + " : register(s" + n + ");\n";
        pixelSum += " + t" + n + ".Sample(s" + n + ", 0.5)";
        if (i >= 14)
            continue;
        globals += "cbuffer V" + n + " : register(b" + n + ") { float4 v" + n + "; };\ncbuffer P" + n +
                   " : register(b" + n + ") { float4 p" + n + "; };\n";
        vertexSum += " + v" + n;
        pixelSum += " + p" + n;
    }
    const SmartRef<Shader> shader =
        makeShaderFromText(globals +
                           "struct Pixel { float4 position : SV_Position; float4 sum : SUM; };\n"
                           "Pixel VS(float3 p : POSITION) { Pixel o; o.position = float4(p, 1); o.sum = " +
                           vertexSum +
                           "; return o; }\n"
                           "float4 PS(Pixel p) : SV_Target { return p.sum + " +
                           pixelSum + "; }\n");
    std::vector<SmartRef<ConstantBuffer>> buffers;
    const SmartRef<Texture> texture = makeTexture(1, 1, {0x00000300});
    for (unsigned i = 0; i < 16; ++i)
        texture->bind(i);
    for (unsigned i = 0; i < 14; ++i) {
        makeConstants(Vec4(2.0f / 255, 0, 0, 0))->bindVS(i);
        buffers.push_back(makeConstants(Vec4(0, 0, 1.0f / 255, 0)));
        buffers.back()->bindPS(i);
    }
    const unsigned columns = 37;
    const Image image = draw([&] {
        bindDefaults();
        for (unsigned x = 0; x < columns; ++x)
        { // draws that differ in one buffer, then one of another program
            const SmartRef<Viewport> viewport = new Viewport(float(x), 0, 1, 12);
            renderer().pushViewport(viewport.get());
            setConstants(*buffers[x % 14], Vec4(0, 0, 1.0f / 255, float(x) / 255));
            drawQuad(*shader, makeQuad({}));
            setConstants(*buffers[x % 14], Vec4(0, 0, 1.0f / 255, 0));
            renderer().popViewport();
        }
        drawQuad(*m_colorShader, makeQuad(Vec4(1, 0, 0, 1), 0.5f, -1, 0, 1, -1));
    });
    for (unsigned x = 0; x < columns; ++x)
        ASSERT_EQ(image.at8(x, 5), (Image::Pixel8{28, 48, 14, uint8_t(x)})) << x;
    EXPECT_EQ(image.at(5, 20), Vec4(1, 0, 0, 1));
}

TEST_F(ConstantBufferTest, BytesBeyondAShortBufferReadAsZero)
{
    const SmartRef<Shader> shader = makeShader(
        "return first + rest[3];", "cbuffer Values : register(b1) { float4 first; float4 rest[40]; };");
    const SmartRef<ConstantBuffer> other = makeConstants(Vec4(0, 1, 0, 0));
    const SmartRef<ConstantBuffer> buffer = makeConstants(Vec4(1, 0, 0, 1));
    const Image image = draw([&] {
        bindDefaults();
        buffer->bindPS(1);
        drawQuad(*shader, makeQuad({}));
    });
    EXPECT_EQ(image.at(3, 11), Vec4(1, 0, 0, 1));
}

TEST_F(ConstantBufferTest, ASlotKeepsItsBufferAcrossFramesAndWrongSizesFail)
{
    const SmartRef<Shader> shader = makeShader("return value;", pixelConstants);
    makeConstants(Vec4(0, 0, 1, 1))->bindPS(1); // only the slot holds it
    for (int frame = 0; frame < 2; ++frame) {
        const Image image = draw([&] {
            bindDefaults();
            drawQuad(*shader, makeQuad({}));
        });
        EXPECT_EQ(image.at(3, 11), Vec4(0, 0, 1, 1));
    }
    ConstantBuffer buffer;
    EXPECT_FALSE(buffer.create(0));
    takeProblems();
    EXPECT_FALSE(buffer.create(65537));
    EXPECT_EQ(takeProblems().front().text, "no constant buffer of 65537 bytes: 1 to 65536 are possible");
    EXPECT_EQ(buffer.map(), nullptr);
    buffer.unmap();
    buffer.bindPS(0);
}

TEST_F(ConstantBufferTest, ThousandsOfChangesInAFrameAllCount)
{
    const SmartRef<Shader> shader = makeShader("return value;", pixelConstants);
    const SmartRef<RenderTarget> target = makeTarget(101, 67);
    const SmartRef<ConstantBuffer> buffer = makeConstants({});
    const auto colorOf = [](unsigned x, unsigned y) { return Vec4(x / 255.0f, y / 255.0f, 0, 1); };
    renderer().beginFrame(target.get());
    bindDefaults();
    buffer->bindPS(1);
    for (unsigned y = 0; y < 67; ++y) {
        for (unsigned x = 0; x < 101; ++x) {
            const SmartRef<Viewport> viewport = new Viewport(float(x), float(y), 1, 1);
            renderer().pushViewport(viewport.get());
            setConstants(*buffer, colorOf(x, y));
            drawQuad(*shader, makeQuad({}));
            renderer().popViewport();
        }
    }
    renderer().endFrame();
    const Image image = readImage(renderer(), target.get());
    Image expected(101, 67);
    for (unsigned y = 0; y < 67; ++y) {
        for (unsigned x = 0; x < 101; ++x)
            expected.at(x, y) = colorOf(x, y);
    }
    EXPECT_TRUE(matches(image, expected, {}));
}

} // namespace

} // namespace helvantine::test
