// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

#include <helvantine/renderer/IndexBuffer.h>

#include <cmath>

namespace helvantine::test
{

namespace
{

const Vec4 white(1, 1, 1, 1);
const Vec4 red(1, 0, 0, 1);
const Vec4 green(0, 1, 0, 1);
const Vec4 blue(0, 0, 1, 1);

class RasterizerTest : public DeviceTest
{
protected:
    /// Pixels that are not transparent black.
    static int countDrawn(const Image& image)
    {
        int drawn = 0;
        for (unsigned y = 0; y < image.getHeight(); ++y) {
            for (unsigned x = 0; x < image.getWidth(); ++x)
                drawn += image.at8(x, y) != Image::Pixel8{0, 0, 0, 0};
        }
        return drawn;
    }
};

TEST_F(RasterizerTest, CornersLandWhereDirect3DPutsThem)
{
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(red, 0.5f, -1, 1, 0, 0));
        drawQuad(*m_colorShader, makeQuad(green, 0.5f, 0, 1, 1, 0));
        drawQuad(*m_colorShader, makeQuad(blue, 0.5f, -1, 0, 0, -1));
        drawQuad(*m_colorShader, makeQuad(white, 0.5f, 0, 0, 1, -1));
    });
    writePng(getOutputFolder() + "/orientation.png", image);
    EXPECT_EQ(image.at(0, 0), red);
    EXPECT_EQ(image.at(36, 0), green);
    EXPECT_EQ(image.at(0, 22), blue);
    EXPECT_EQ(image.at(36, 22), white);
}

TEST_F(RasterizerTest, PixelCentresAndTextureOriginAreDirect3Ds)
{
    const SmartRef<Shader> shader = makeShader("return float4(p.position.xy / 64, p.uv);");
    const SmartRef<RenderTarget> target = makeTarget(8, 4, DXGI_FORMAT_R32G32B32A32_FLOAT);
    renderer().beginFrame(target.get());
    bindDefaults();
    drawQuad(*shader, makeQuad(white));
    renderer().endFrame();
    const Image image = readImage(renderer(), target.get());
    for (const auto& [x, y] : {std::pair(0u, 0u), std::pair(7u, 0u), std::pair(3u, 3u)}) {
        const Vec4 value = image.at(x, y);
        EXPECT_FLOAT_EQ(value.x * 64, x + 0.5f);
        EXPECT_FLOAT_EQ(value.y * 64, y + 0.5f);
        EXPECT_NEAR(value.z, (x + 0.5f) / 8, 1e-4f);
        EXPECT_NEAR(value.w, (y + 0.5f) / 4, 1e-4f);
    }
}

TEST_F(RasterizerTest, CullingFollowsWindingAndFrontFace)
{
    const std::vector<Vertex> clockwise = {{-1, 1, 0.5f, red}, {1, 1, 0.5f, red}, {-1, -1, 0.5f, red}};
    const std::vector<Vertex> counter = {clockwise[0], clockwise[2], clockwise[1]};
    const struct
    {
        D3D11_CULL_MODE cull;
        int frontCounterClockwise;
        bool clockwiseShows;
        bool counterShows;
    } cases[] = {
        {D3D11_CULL_NONE, 0, true, true},   {D3D11_CULL_BACK, 0, true, false},
        {D3D11_CULL_FRONT, 0, false, true}, {D3D11_CULL_BACK, 1, false, true},
        {D3D11_CULL_FRONT, 1, true, false},
    };
    for (const auto& entry : cases) {
        for (const bool isClockwise : {true, false}) {
            const Image image = draw([&] {
                bindDefaults();
                setRasterizer({.CullMode = entry.cull, .FrontCounterClockwise = entry.frontCounterClockwise});
                drawVertices(*m_colorShader, isClockwise ? clockwise : counter,
                             D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
            });
            EXPECT_EQ(countDrawn(image) > 0, isClockwise ? entry.clockwiseShows : entry.counterShows)
                << "cull " << entry.cull << " front " << entry.frontCounterClockwise << isClockwise;
        }
    }
}

TEST_F(RasterizerTest, DepthClipDropsAndItsAbsenceClamps)
{
    for (const float z : {-1.0f, 1.5f}) {
        for (const int clip : {1, 0}) {
            const Image image = draw([&] {
                bindDefaults();
                setRasterizer({.CullMode = D3D11_CULL_NONE, .DepthClipEnable = clip});
                drawQuad(*m_colorShader, makeQuad(red, z));
            });
            EXPECT_EQ(countDrawn(image), clip ? 0 : 37 * 23) << "depth " << z << " clip " << clip;
        }
    }
}

TEST_F(RasterizerTest, ViewportsNestAndBoundWhatIsDrawn)
{
    const SmartRef<Viewport> outer = new Viewport(3, 5, 20, 10);
    const SmartRef<Viewport> inner = new Viewport(30, 20, 100, 100); // reaches beyond the target
    const Image image = draw([&] {
        bindDefaults();
        renderer().pushViewport(outer.get());
        renderer().pushViewport(inner.get());
        drawQuad(*m_colorShader, makeQuad(green));
        renderer().popViewport();
        EXPECT_EQ(renderer().getViewport(), outer.get());
        drawQuad(*m_colorShader, makeQuad(red));
        renderer().popViewport();
        EXPECT_EQ(renderer().getViewport()->getRect(), Rect(0, 0, 37, 23));
    });
    for (unsigned y = 0; y < 23; ++y) {
        for (unsigned x = 0; x < 37; ++x) {
            const bool inOuter = x >= 3 && x < 23 && y >= 5 && y < 15;
            const bool inInner = x >= 30 && y >= 20;
            EXPECT_EQ(image.at(x, y), inOuter ? red : inInner ? green : Vec4(0, 0, 0, 0)) << x << ", " << y;
        }
    }
}

TEST_F(RasterizerTest, ViewportsPoppedTooOftenTakeNoTargetsOwn)
{
    const SmartRef<RenderTarget> inner = makeTarget(4, 4);
    const Image image = draw([&] {
        bindDefaults();
        renderer().pushRenderTarget(inner.get());
        for (int i = 0; i < 3; ++i)
            renderer().popViewport();
        EXPECT_EQ(renderer().getViewport()->getRect(), Rect(0, 0, 4, 4));
        drawQuad(*m_colorShader, makeQuad(green));
        renderer().popRenderTarget();
        EXPECT_EQ(renderer().getViewport()->getRect(), Rect(0, 0, 37, 23));
        drawQuad(*m_colorShader, makeQuad(red));
    });
    EXPECT_EQ(countDrawn(image), 37 * 23);
    EXPECT_EQ(readImage(renderer(), inner.get()).at(3, 3), green);
}

TEST_F(RasterizerTest, ImpossibleViewportsDrawNothing)
{
    for (const Rect rect : {Rect(0, 0, 0, 5), Rect(0, 0, 5, -1), Rect(0, 0, NAN, 5), Rect(1e9f, 0, 5, 5)}) {
        const SmartRef<Viewport> viewport = new Viewport(rect.x, rect.y, rect.width, rect.height);
        const Image image = draw([&] {
            bindDefaults();
            renderer().pushViewport(viewport.get());
            drawQuad(*m_colorShader, makeQuad(red));
        });
        EXPECT_EQ(countDrawn(image), 0) << rect.x << " " << rect.width;
    }
}

TEST_F(RasterizerTest, TopologiesCoverTheirShapes)
{
    const std::vector<Vertex> corners = {
        {-1, 1, 0.5f, red}, {1, 1, 0.5f, red}, {-1, -1, 0.5f, red}, {1, -1, 0.5f, red}};
    const auto count = [&](D3D11_PRIMITIVE_TOPOLOGY topology, const std::vector<Vertex>& vertices) {
        return countDrawn(draw([&] {
            bindDefaults();
            drawVertices(*m_colorShader, vertices, topology);
        }));
    };
    EXPECT_EQ(count(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP, corners), 37 * 23);
    EXPECT_NEAR(count(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST, corners), 37 * 23 / 2, 25)
        << "one triangle and a rest";
    EXPECT_EQ(count(D3D11_PRIMITIVE_TOPOLOGY_UNDEFINED, corners), 0);
    EXPECT_EQ(count(D3D11_PRIMITIVE_TOPOLOGY_POINTLIST, {{0, 0, 0.5f, red}, {0.5f, 0, 0.5f, red}}), 2);
    const std::vector<Vertex> line = {{-0.5f, 0, 0.5f, red}, {0.5f, 0, 0.5f, red}, {0.5f, 0.5f, 0.5f, red}};
    const int list = count(D3D11_PRIMITIVE_TOPOLOGY_LINELIST, line);
    EXPECT_NEAR(list, 37 / 2, 2);
    EXPECT_NEAR(count(D3D11_PRIMITIVE_TOPOLOGY_LINESTRIP, line), list + 23 / 4, 2);
}

TEST_F(RasterizerTest, WireframeDrawsEdgesOnly)
{
    const Image image = draw([&] {
        bindDefaults();
        setRasterizer({.FillMode = D3D11_FILL_WIREFRAME, .CullMode = D3D11_CULL_NONE});
        drawQuad(*m_colorShader, makeQuad(red, 0.5f, -0.9f, 0.9f, 0.9f, -0.9f));
    });
    EXPECT_GT(countDrawn(image), 60);
    EXPECT_LT(countDrawn(image), 37 * 23 / 3);
}

TEST_F(RasterizerTest, IndicesStartWhereAskedAndNeverLeaveTheirBuffer)
{
    const auto left = makeQuad(red, 0.5f, -1, 1, 0, -1);
    const auto right = makeQuad(green, 0.5f, 0, 1, 1, -1);
    std::vector<Vertex> vertices(left.begin(), left.end());
    vertices.insert(vertices.end(), right.begin(), right.end());
    const uint32_t wide[] = {0, 1, 2, 2, 1, 3};
    const uint16_t narrow[] = {9, 9, 9, 0, 1, 2, 2, 1, 3};
    SmartRef<VertexBuffer> buffer =
        createVertexBuffer(vertices.data(), static_cast<unsigned>(vertices.size() * sizeof(Vertex)),
                           sizeof(Vertex), D3D11_USAGE_IMMUTABLE, 0, 0);
    SmartRef<IndexBuffer> wideIndices =
        createIndexBuffer(wide, sizeof wide, D3D11_USAGE_IMMUTABLE, DXGI_FORMAT_R32_UINT);
    SmartRef<IndexBuffer> narrowIndices =
        createIndexBuffer(narrow, sizeof narrow, D3D11_USAGE_IMMUTABLE, DXGI_FORMAT_R16_UINT);
    const Image image = draw([&] {
        bindDefaults();
        m_colorShader->bind(m_declaration.get());
        buffer->bind(0);
        renderer().getContext()->IASetPrimitiveTopology(D3D11_PRIMITIVE_TOPOLOGY_TRIANGLELIST);
        wideIndices->bind();
        renderer().getContext()->DrawIndexed(6, 0, 0);
        narrowIndices->bind();
        renderer().getContext()->DrawIndexed(600, 3, 4); // more than there are
        narrowIndices->unbind();
        renderer().getContext()->DrawIndexed(6, 0, 0); // none bound
    });
    EXPECT_EQ(image.at(3, 11), red);
    EXPECT_EQ(image.at(33, 11), green);
    EXPECT_EQ(renderer().getStats().drawsLastFrame, 2u);
}

} // namespace

} // namespace helvantine::test
