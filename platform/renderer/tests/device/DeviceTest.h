// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/Device.h>
#include <helvantine/renderer/RasterizerState.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/renderer/TextureSampler.h>
#include <helvantine/renderer/VertexBuffer.h>
#include <helvantine/renderer/VertexDeclaration.h>
#include <helvantine/renderer/Viewport.h>
#include <helvantine/testsupport/RenderingTest.h>

#include <array>
#include <vector>

namespace helvantine::test
{

/// A vertex of the tests' programs: POSITION, COLOR, TEXCOORD.
struct Vertex
{
    float x, y, z;
    Vec4 color;
    float u = 0.0f, v = 0.0f;
};

/// A rectangle of clip space at a depth, of one colour, as a strip; texture coordinates run from 0 to 1.
std::array<Vertex, 4> makeQuad(const Vec4& color, float z = 0.5f, float left = -1.0f, float top = 1.0f,
                               float right = 1.0f, float bottom = -1.0f);

/// A renderer of awkward size with what most tests draw with.
class DeviceTest : public RenderingTest
{
protected:
    DeviceTest() : RenderingTest(37, 23) {}

    void SetUp() override;
    void TearDown() override;

    /// The tests' vertex stage passes everything on; body is the pixel stage after `float4 PS(Pixel p) :
    /// SV_Target {`. globals stands before it.
    SmartRef<Shader> makeShader(const std::string& body, const std::string& globals = "");
    /// Both entry points, VS and PS, in the author's own text.
    SmartRef<Shader> makeShaderFromText(const std::string& text);

    SmartRef<RenderTarget> makeTarget(unsigned width, unsigned height,
                                      unsigned format = DXGI_FORMAT_B8G8R8A8_UNORM, unsigned depthFormat = 0,
                                      unsigned samples = 1);
    /// A texture of 8-bit RGBA texels, one mip.
    SmartRef<Texture> makeTexture(unsigned width, unsigned height, const std::vector<uint32_t>& texels);
    static SmartRef<ConstantBuffer> makeConstants(const Vec4& value);
    static void setConstants(ConstantBuffer& buffer, const Vec4& value);

    void drawQuad(Shader& shader, const std::array<Vertex, 4>& quad);
    void drawVertices(Shader& shader, const std::vector<Vertex>& vertices, D3D11_PRIMITIVE_TOPOLOGY topology);
    void bindDefaults(); ///< no culling, no depth test, no blending

    static void setBlend(BlendMode mode);
    static void setRasterizer(const D3D11_RASTERIZER_DESC& desc);
    static void setDepth(const D3D11_DEPTH_STENCIL_DESC& desc, unsigned reference = 0);

    SmartRef<Shader> m_colorShader;   ///< gives the vertex colour
    SmartRef<Shader> m_textureShader; ///< gives t0 through s0
    SmartRef<VertexDeclaration> m_declaration;
};

/// Rounded to the 8 bits of a target.
int toByte(float value);

} // namespace helvantine::test
