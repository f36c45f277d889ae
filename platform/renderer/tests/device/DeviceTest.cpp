// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace helvantine::test
{

namespace
{

constexpr const char* vertexStage = R"(
struct Vertex { float3 position : POSITION; float4 color : COLOR; float2 uv : TEXCOORD0; };
struct Pixel { float4 position : SV_Position; float4 color : COLOR; float2 uv : TEXCOORD0; };
Pixel VS(Vertex v)
{
    Pixel p;
    p.position = float4(v.position, 1);
    p.color = v.color;
    p.uv = v.uv;
    return p;
}
)";

} // namespace

std::array<Vertex, 4> makeQuad(const Vec4& color, float z, float left, float top, float right, float bottom)
{
    return {Vertex{left, top, z, color, 0, 0}, Vertex{right, top, z, color, 1, 0},
            Vertex{left, bottom, z, color, 0, 1}, Vertex{right, bottom, z, color, 1, 1}};
}

int toByte(float value)
{
    return static_cast<int>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
}

void DeviceTest::SetUp()
{
    RenderingTest::SetUp();
    const D3D11_INPUT_ELEMENT_DESC elements[] = {
        {"POSITION", 0, DXGI_FORMAT_R32G32B32_FLOAT},
        {"COLOR", 0, DXGI_FORMAT_R32G32B32A32_FLOAT},
        {"TEXCOORD", 0, DXGI_FORMAT_R32G32_FLOAT},
    };
    m_declaration = createVertexDeclaration(elements, 3);
    m_colorShader = makeShader("return p.color;");
    m_textureShader = makeShader("return image.Sample(filter, p.uv);",
                                 "Texture2D image : register(t0); SamplerState filter : register(s0);");
}

void DeviceTest::TearDown()
{
    m_colorShader = nullptr;
    m_textureShader = nullptr;
    RenderingTest::TearDown();
}

SmartRef<Shader> DeviceTest::makeShader(const std::string& body, const std::string& globals)
{
    return makeShaderFromText(vertexStage + globals + "\nfloat4 PS(Pixel p) : SV_Target\n{\n" + body +
                              "\n}\n");
}

SmartRef<Shader> DeviceTest::makeShaderFromText(const std::string& text)
{
    ShaderFromMemoryParams params;
    params.vertexSource = params.pixelSource = text;
    params.vertexEntry = "VS";
    params.pixelEntry = "PS";
    SmartRef<Shader> shader = createShaderFromMemory(params);
    EXPECT_TRUE(shader) << params.errorText;
    return shader;
}

SmartRef<RenderTarget> DeviceTest::makeTarget(unsigned width, unsigned height, unsigned format,
                                              unsigned depthFormat, unsigned samples)
{
    return createRenderTarget(width, height, format, samples, 0, depthFormat);
}

SmartRef<Texture> DeviceTest::makeTexture(unsigned width, unsigned height,
                                          const std::vector<uint32_t>& texels)
{
    D3D11_TEXTURE2D_DESC desc;
    desc.Width = width;
    desc.Height = height;
    desc.Format = DXGI_FORMAT_R8G8B8A8_UNORM;
    desc.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    const D3D11_SUBRESOURCE_DATA data{texels.data(), width * 4, 0};
    ID3D11Texture2D* texture = nullptr;
    EXPECT_EQ(renderer().getDevice()->CreateTexture2D(&desc, &data, &texture), 0);
    SmartRef<Texture> wrapped = createTexture(texture);
    if (texture)
        texture->Release();
    return wrapped;
}

SmartRef<ConstantBuffer> DeviceTest::makeConstants(const Vec4& value)
{
    SmartRef<ConstantBuffer> buffer = new ConstantBuffer;
    EXPECT_TRUE(buffer->create(sizeof value));
    setConstants(*buffer, value);
    return buffer;
}

void DeviceTest::setConstants(ConstantBuffer& buffer, const Vec4& value)
{
    std::memcpy(buffer.map(), &value, sizeof value);
    buffer.unmap();
}

void DeviceTest::drawQuad(Shader& shader, const std::array<Vertex, 4>& quad)
{
    drawVertices(shader, {quad.begin(), quad.end()}, D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
}

void DeviceTest::drawVertices(Shader& shader, const std::vector<Vertex>& vertices,
                              D3D11_PRIMITIVE_TOPOLOGY topology)
{
    SmartRef<VertexBuffer> buffer =
        createVertexBuffer(vertices.data(), static_cast<unsigned>(vertices.size() * sizeof(Vertex)),
                           sizeof(Vertex), D3D11_USAGE_DYNAMIC, D3D11_CPU_ACCESS_WRITE, 0);
    ASSERT_TRUE(buffer);
    shader.bind(m_declaration.get());
    buffer->bind(0);
    renderer().getContext()->IASetPrimitiveTopology(topology);
    renderer().getContext()->Draw(static_cast<unsigned>(vertices.size()), 0);
    buffer->unbind(0);
}

void DeviceTest::bindDefaults()
{
    setBlend(BlendMode::Solid);
    setRasterizer({.CullMode = D3D11_CULL_NONE});
    setDepth({.DepthEnable = 0, .DepthWriteMask = D3D11_DEPTH_WRITE_MASK_ZERO});
}

void DeviceTest::setBlend(BlendMode mode)
{
    const float factor[] = {1, 1, 1, 1};
    getBlendState(mode)->bind(factor, 0xFFFFFF);
}

void DeviceTest::setRasterizer(const D3D11_RASTERIZER_DESC& desc)
{
    getRasterizerState(desc)->bind();
}

void DeviceTest::setDepth(const D3D11_DEPTH_STENCIL_DESC& desc, unsigned reference)
{
    getDepthStencilState(desc)->bind(reference);
}

} // namespace helvantine::test
