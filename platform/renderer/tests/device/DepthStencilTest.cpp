// SPDX-License-Identifier: MIT
#include "DeviceTest.h"

namespace helvantine::test
{

namespace
{

const Vec4 red(1, 0, 0, 1);
const Vec4 green(0, 1, 0, 1);
const Vec4 nothing(0, 0, 0, 0);

bool compare(D3D11_COMPARISON_FUNC function, float drawn, float stored)
{
    const bool outcomes[] = {false, drawn<stored, drawn == stored, drawn <= stored, drawn> stored,
                             drawn != stored, drawn >= stored, true};
    return outcomes[function - D3D11_COMPARISON_NEVER];
}

class DepthStencilTest : public DeviceTest
{
protected:
    static D3D11_DEPTH_STENCIL_DESC stencil(D3D11_COMPARISON_FUNC function, D3D11_STENCIL_OP pass,
                                            uint8_t writeMask)
    {
        D3D11_DEPTH_STENCIL_DESC desc;
        desc.DepthEnable = 0;
        desc.StencilEnable = 1;
        desc.StencilWriteMask = writeMask;
        desc.FrontFace.StencilFunc = desc.BackFace.StencilFunc = function;
        desc.FrontFace.StencilPassOp = desc.BackFace.StencilPassOp = pass;
        return desc;
    }
};

TEST_F(DepthStencilTest, EveryComparisonComparesTheNewDepthWithTheOld)
{
    for (int number = 1; number <= 8; ++number) {
        const auto function = static_cast<D3D11_COMPARISON_FUNC>(number);
        for (const float z : {0.25f, 0.5f, 0.75f}) {
            const Image image = draw([&] {
                bindDefaults();
                renderer().clear(Renderer::ClearDepth, nothing, 0.5f, 0);
                setDepth({.DepthFunc = function});
                drawQuad(*m_colorShader, makeQuad(red, z));
            });
            const bool passes = compare(function, z, 0.5f);
            EXPECT_EQ(image.at(11, 11), passes ? red : nothing) << "function " << number << " depth " << z;
        }
    }
}

TEST_F(DepthStencilTest, DepthIsWrittenOnlyWhereAsked)
{
    for (const auto mask : {D3D11_DEPTH_WRITE_MASK_ZERO, D3D11_DEPTH_WRITE_MASK_ALL}) {
        const Image image = draw([&] {
            bindDefaults();
            setDepth({.DepthWriteMask = mask});
            drawQuad(*m_colorShader, makeQuad(red, 0.25f));
            drawQuad(*m_colorShader, makeQuad(green, 0.75f));
        });
        EXPECT_EQ(image.at(30, 20), mask == D3D11_DEPTH_WRITE_MASK_ALL ? red : green);
    }
}

TEST_F(DepthStencilTest, AMarkInTheStencilBoundsWhatIsDrawnLater)
{
    const Image image = draw([&] {
        bindDefaults();
        setDepth(stencil(D3D11_COMPARISON_ALWAYS, D3D11_STENCIL_OP_REPLACE, 0xFF), 1);
        drawQuad(*m_colorShader, makeQuad(nothing, 0.5f, -1, 1, 0, -1));
        setDepth(stencil(D3D11_COMPARISON_EQUAL, D3D11_STENCIL_OP_KEEP, 0), 0x101); // the low byte counts
        drawQuad(*m_colorShader, makeQuad(red));
        setDepth(stencil(D3D11_COMPARISON_EQUAL, D3D11_STENCIL_OP_KEEP, 0), 0);
        drawQuad(*m_colorShader, makeQuad(green));
    });
    EXPECT_EQ(image.at(2, 11), red);
    EXPECT_EQ(image.at(34, 11), green);
}

TEST_F(DepthStencilTest, ClearingDepthClearsTheStencilToItsValue)
{
    const Image image = draw([&] {
        bindDefaults();
        drawQuad(*m_colorShader, makeQuad(nothing)); // rendering is open: the clear comes among the draws
        renderer().clear(Renderer::ClearDepth, nothing, 1.0f, 7);
        setDepth(stencil(D3D11_COMPARISON_EQUAL, D3D11_STENCIL_OP_KEEP, 0), 7);
        drawQuad(*m_colorShader, makeQuad(red));
    });
    EXPECT_EQ(image.at(0, 0), red);
}

TEST_F(DepthStencilTest, TestsPassWhereTheTargetHasNoBuffer)
{
    const SmartRef<RenderTarget> target = makeTarget(5, 3);
    renderer().beginFrame(target.get());
    bindDefaults();
    D3D11_DEPTH_STENCIL_DESC desc = stencil(D3D11_COMPARISON_NEVER, D3D11_STENCIL_OP_KEEP, 0);
    desc.DepthEnable = 1;
    desc.DepthFunc = D3D11_COMPARISON_NEVER;
    setDepth(desc);
    drawQuad(*m_colorShader, makeQuad(green));
    renderer().endFrame();
    EXPECT_EQ(readImage(renderer(), target.get()).at(4, 2), green);
}

TEST_F(DepthStencilTest, DepthBiasMovesWhatIsDrawn)
{
    const Image image = draw([&] {
        bindDefaults();
        renderer().clear(Renderer::ClearDepth, nothing, 0.5f, 0);
        setDepth({});
        setRasterizer({.CullMode = D3D11_CULL_NONE, .DepthBias = -100000});
        drawQuad(*m_colorShader, makeQuad(red, 0.5f));
    });
    EXPECT_EQ(image.at(11, 11), red);
}

TEST_F(DepthStencilTest, EqualDescriptionsAreOneObject)
{
    EXPECT_EQ(getDepthStencilState({}), getDepthStencilState({}));
    EXPECT_NE(getDepthStencilState({}), getDepthStencilState({.StencilReadMask = 1}));
    EXPECT_EQ(getRasterizerState({}), getRasterizerState({}));
    EXPECT_NE(getRasterizerState({}), getRasterizerState({.DepthBiasClamp = 0.5f}));
    D3D11_BLEND_DESC desc;
    EXPECT_EQ(getBlendState(desc), getBlendState(BlendMode::Solid));
    desc.RenderTarget[7].DestBlend = D3D11_BLEND_ONE;
    EXPECT_NE(getBlendState(desc), getBlendState(BlendMode::Solid));
}

} // namespace

} // namespace helvantine::test
