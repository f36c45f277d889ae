// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vector.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/testsupport/ProjectTest.h>
#include <helvantine/timeline/FxContext.h>

#include <functional>

namespace helvantine::test
{

/// Float targets are compared with a twentieth of an 8-bit step: what is left is the arithmetic's rounding.
inline constexpr Tolerance floatTolerance{0.05f, 0.0f};

/// Every pixel as a function of its centre's texture coordinate.
Image makeImage(unsigned width, unsigned height, const std::function<Vec4(Vec2)>& color);
/// Noise in 0 to 1 that is the same in every run, with some exact zeros and ones.
Image makeNoise(unsigned width, unsigned height, unsigned seed);
/// What a shader reads with a clamping point sampler.
Vec4 readNearest(const Image& image, Vec2 texCoord);
/// What a shader reads with a clamping linear sampler.
Vec4 readLinear(const Image& image, Vec2 texCoord);

/// Assigns a property by its text.
void set(Object& object, const char* group, const char* name, const std::string& text);
/// Lets a property name a resource.
void set(Object& object, const char* group, const char* name, const Resource& resource);

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

/// Draws single effects into targets of its own.
class EffectTest : public DrawingTest
{
protected:
    static SmartRef<Texture> makeTexture(const Image& image);
    static SmartRef<RenderTarget> makeTarget(unsigned width, unsigned height,
                                             unsigned format = DXGI_FORMAT_R32G32B32A32_FLOAT,
                                             bool depth = false);
    /// A float target of the document's resource tree that holds the image.
    static SmartRef<RenderTargetResource> addTarget(const Image& image);
    /// A texture of the tree, read from a file of the document's folder that holds the image's floats.
    SmartRef<TextureResource> addTexture(const Image& image) const;

    static void update(Effect& effect, const FxContext& context = {});
    static void render(Effect& effect, const FxContext& context = {});
    /// Runs one frame with the target on the stack, cleared to the colour and depth 1.
    static void drawFrame(RenderTarget* target, const Vec4& clear, const std::function<void()>& draw);
    static Image read(RenderTarget* target) { return readImage(*g_renderer, target); }
    /// Updates and draws the effect over the whole of a target that is cleared to the colour.
    static Image drawOverScreen(Effect2D& effect, RenderTarget* target, const Vec4& clear = Vec4(),
                                const FxContext& context = {});
    /// The same into a float target of its own.
    static Image drawOverScreen(Effect2D& effect, unsigned width, unsigned height);
};

} // namespace helvantine::test
