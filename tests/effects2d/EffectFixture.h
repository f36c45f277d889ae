// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/SmartRef.h>
#include <helvantine/core/Vector.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/host/Application.h>
#include <helvantine/renderer/RenderTarget.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/renderer/Texture.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace helvantine::test
{

/// A picture in memory, rows from the top, as a shader would read it.
struct Picture
{
    Picture(unsigned w, unsigned h, const Vec4& color = Vec4()) : width(w), height(h), pixels(w * h, color) {}
    /// Every pixel as a function of its centre's texture coordinate.
    Picture(unsigned w, unsigned h, const std::function<Vec4(Vec2)>& color);

    Vec4& at(unsigned x, unsigned y) { return pixels[y * width + x]; }
    const Vec4& at(unsigned x, unsigned y) const { return pixels[y * width + x]; }
    Vec2 centre(unsigned x, unsigned y) const { return Vec2((x + 0.5f) / width, (y + 0.5f) / height); }
    Vec4 nearest(Vec2 texCoord) const; ///< point filter, clamped
    Vec4 linear(Vec2 texCoord) const;  ///< linear filter, clamped

    unsigned width;
    unsigned height;
    std::vector<Vec4> pixels;
};

/// Noise in 0 to 1 that is the same in every run, with some exact zeros and ones.
Picture makeNoise(unsigned width, unsigned height, unsigned seed);

void expectSame(const Picture& actual, const Picture& expected, float tolerance);

/// Opens the pieces of texture effects to tests.
class ProbeEffect : public TextureEffect
{
public:
    using TextureEffect::bindPassStates;
    using TextureEffect::drawFinalPass;
    using TextureEffect::drawPass;
    using TextureEffect::getSourceTexture;
    using TextureEffect::Input;
    using TextureEffect::m_blend;
    using TextureEffect::m_color;
    using TextureEffect::m_corners;
    using TextureEffect::m_is3D;
    using TextureEffect::m_position;
    using TextureEffect::m_size;
    using TextureEffect::m_textureProperty;
    using TextureEffect::m_uvRect;
    using TextureEffect::m_wrap;
    using TextureEffect::prepareSharedData;
    using TextureEffect::writeEffectQuad;
    using TextureEffect::writeFullTargetQuad;
};

constexpr float floatTolerance = 2e-4f;
constexpr float byteTolerance = 2.0f / 255.0f;

/// An application with a device, a document and the validation layer, whose messages fail the test.
class EffectFixture : public ::testing::Test
{
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override;

    static SmartRef<Texture> makeTexture(const Picture& picture);
    static SmartRef<RenderTarget> makeTarget(unsigned width, unsigned height, bool floats = true,
                                             bool depth = false);
    static Picture read(RenderTarget* target);
    /// Runs one frame with the target on the stack, cleared to the colour and depth 1.
    static void drawFrame(RenderTarget* target, const Vec4& clear, const std::function<void()>& draw);

    static std::unique_ptr<Application> s_application;
};

} // namespace helvantine::test
