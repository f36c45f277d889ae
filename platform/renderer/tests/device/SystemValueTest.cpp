// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/renderer/IndexBuffer.h>

namespace helvantine::test
{

namespace
{

class SystemValueTest : public DeviceTest
{
protected:
    /// Text of a program for points in the first row: at pixel `at` it shows `shown`, whole numbers up to 255.
    static std::string numberText(const std::string& inputs, const std::string& at, const std::string& shown)
    {
        return "struct Pixel { float4 position : SV_Position; nointerpolation float4 shown : SHOWN; };\n"
               "Pixel VS(" +
               inputs + ")\n{\n    Pixel p;\n    p.position = float4((" + at +
               " + 0.5) / 37 * 2 - 1, 1 - 1.0 / 23, 0.5, 1);\n    p.shown = float4(" + shown +
               ") / 255;\n    return p;\n}\n"
               "float4 PS(Pixel p) : SV_Target { return p.shown; }\n";
    }
};

/// The clip space of the quad has w = 2 on the left and w = 4 on the right.
TEST_F(SystemValueTest, ThePositionOfAPixelHoldsItsPlaceDepthAndW)
{
    const SmartRef<Shader> shader = makeShaderFromText(R"(
struct Vertex { float3 position : POSITION; float4 color : COLOR; };
float4 VS(Vertex v) : SV_Position { return float4(v.position, 1) * v.color.r; }
float4 plus(float4 p, int i) { return float4(p.xyz / float3(37, 23, 1), p[i] / 8); }
float4 PS(float4 p : SV_Position) : SV_Target { return plus(p, 3); }
)");
    auto quad = makeQuad({2, 0, 0, 0}, 0.25f);
    quad[1].color = quad[3].color = Vec4(4, 0, 0, 0);
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*shader, quad);
    });
    for (const unsigned x : {0u, 18u, 36u}) {
        const float across = (float(x) + 0.5f) / 37;
        const float w = 1 / ((1 - across) / 2 + across / 4); // 1 / w is linear on the screen
        EXPECT_EQ(image.at8(x, 11)[0], toByte(across));
        EXPECT_EQ(image.at8(x, 11)[1], toByte(0.5f));
        EXPECT_EQ(image.at8(x, 11)[2], toByte(0.25f));
        EXPECT_NEAR(image.at8(x, 11)[3], toByte(w / 8), 1);
    }
}

TEST_F(SystemValueTest, VertexNumbersCountFromZeroAndOfIndexedDrawsAreTheIndex)
{
    const SmartRef<Shader> shader = makeShaderFromText(
        numberText("uint id : SV_VertexID, uint instance : SV_InstanceID, float4 color : COLOR", "id",
                   "id, instance, color.r, 255"));
    std::vector<Vertex> vertices(32, Vertex{0, 0, 0, {}});
    for (size_t i = 0; i < vertices.size(); ++i)
        vertices[i].color = Vec4(float(i), 0, 0, 0);
    const SmartRef<VertexBuffer> buffer =
        createVertexBuffer(vertices.data(), unsigned(vertices.size() * sizeof(Vertex)), sizeof(Vertex),
                           D3D11_USAGE_IMMUTABLE, 0, 0);
    constexpr uint32_t indices[] = {0, 9, 7, 3};
    const SmartRef<IndexBuffer> indexBuffer =
        createIndexBuffer(indices, sizeof indices, D3D11_USAGE_IMMUTABLE, DXGI_FORMAT_R32_UINT);
    const auto drawPoints = [&](const auto& issue) {
        return draw([&] {
            bindDefaults();
            shader->bind(m_declaration.get());
            buffer->bind(0);
            indexBuffer->bind();
            renderer().getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_POINTLIST);
            issue(*renderer().getContext());
            indexBuffer->unbind();
            buffer->unbind(0);
        });
    };
    const Image plain = drawPoints([](ID3D11DeviceContext& context) { context.Draw(3, 5); });
    EXPECT_EQ(plain.at8(0, 0), (Image::Pixel8{0, 0, 5, 255}));
    EXPECT_EQ(plain.at8(2, 0), (Image::Pixel8{2, 0, 7, 255}));
    const Image indexed = drawPoints([](ID3D11DeviceContext& context) { context.DrawIndexed(3, 1, 20); });
    for (const unsigned index : {9u, 7u, 3u})
        EXPECT_EQ(indexed.at8(index, 0), (Image::Pixel8{uint8_t(index), 0, uint8_t(index + 20), 255}));
}

TEST_F(SystemValueTest, PixelsKnowTheirPrimitiveAndItsFace)
{
    const SmartRef<Shader> shader = makeShaderFromText(R"(
float4 VS(float3 p : POSITION) : SV_Position { return float4(p, 1); }
float4 PS(float4 p : SV_Position, uint id : SV_PrimitiveID, bool front : SV_IsFrontFace) : SV_Target
{
    return float4(id, front ? 1 : 0, 0, 255) / 255;
}
)");
    std::vector<Vertex> vertices;
    for (int strip = 0; strip < 4; ++strip) {
        const float left = -1.0f + 0.5f * float(strip);
        auto quad = makeQuad({}, 0.5f, left, 1, left + 0.5f, -1);
        if (strip == 2)
            std::swap(quad[0], quad[1]), std::swap(quad[2], quad[3]);
        vertices.insert(vertices.end(), {quad[0], quad[1], quad[2], quad[2], quad[1], quad[3]});
    }
    const Image image = draw([&] {
        bindDefaults();
        drawVertices(*shader, vertices, D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
    });
    EXPECT_EQ(image.at8(1, 1), (Image::Pixel8{0, 1, 0, 255}));
    EXPECT_EQ(image.at8(8, 21), (Image::Pixel8{1, 1, 0, 255}));
    EXPECT_EQ(image.at8(27, 1), (Image::Pixel8{4, 0, 0, 255})) << "turned away";
    EXPECT_EQ(image.at8(35, 21), (Image::Pixel8{7, 1, 0, 255}));
}

TEST_F(SystemValueTest, AProgramWithoutPixelTextDrawsDepthAlone)
{
    ShaderFromMemoryParams params;
    params.vertexSource = "float4 VS(float3 p : POSITION) : SV_Position { return float4(p, 1); }";
    params.vertexEntry = "VS";
    const SmartRef<Shader> depthPass = createShaderFromMemory(params);
    ASSERT_TRUE(depthPass) << params.errorText;
    const SmartRef<RenderTarget> target =
        makeTarget(8, 4, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_R32_TYPELESS);
    renderer().beginFrame(target.get());
    renderer().clear(3, Vec4(0, 1, 0, 1), 1.0f, 0);
    bindDefaults();
    setDepth({});
    drawQuad(*depthPass, makeQuad({1, 0, 0, 1}, 0.25f, -1, 1, 0, -1));
    renderer().endFrame();
    std::vector<float> depth;
    ASSERT_TRUE(renderer().readBackDepth(target.get(), depth));
    EXPECT_EQ(depth[1], 0.25f);
    EXPECT_EQ(depth[6], 1.0f);
    EXPECT_EQ(readImage(renderer(), target.get()).at(1, 1), Vec4(0, 1, 0, 1)) << "no colour is written";

    params.pixelEntry = "PS";
    EXPECT_FALSE(createShaderFromMemory(params));
    EXPECT_EQ(params.errorText, "shader:1: error: no pixel source\n");
}

/// The validation layer wants an alpha for it.
TEST_F(SystemValueTest, AlphaToCoverageNeedsNoColor)
{
    const SmartRef<RenderTarget> target =
        makeTarget(8, 4, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_R32_TYPELESS);
    D3D11_BLEND_DESC desc;
    desc.AlphaToCoverageEnable = 1;
    const float factor[] = {1, 1, 1, 1};
    for (const char* text :
         {"float PS() : SV_Depth { return 0.5; }", "float3 PS() : SV_Target { return float3(1, 0, 0); }"})
    {
        const SmartRef<Shader> shader = makeShaderFromText(
            std::string("float4 VS(float3 p : POSITION) : SV_Position { return float4(p, 1); }\n") + text);
        renderer().beginFrame(target.get());
        renderer().clear(3, {}, 1.0f, 0);
        bindDefaults();
        getBlendState(desc)->bind(factor, 0xFFFFFF);
        setDepth({});
        drawQuad(*shader, makeQuad({}));
        renderer().endFrame();
    }
    EXPECT_EQ(readImage(renderer(), target.get()).at8(1, 1)[0], 255);
}

} // namespace

} // namespace helvantine::test
