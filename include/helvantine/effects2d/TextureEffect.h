// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vector.h>
#include <helvantine/effects2d/TextureEffectType.h>
#include <helvantine/renderer/BlendState.h>
#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/timeline/Effect2D.h>

#include <array>
#include <span>

/// Laws of texture effects.
///
/// - An effect draws one quad into the current target. Its source is a texture or a render target of the
///   project; without one the quad is drawn with slot 0 empty.
/// - All texture effects share one vertex buffer, one constant buffer, states, samplers and programs. They
///   live from the first effect's making to the last one's end, are made when a renderer is there to make
///   them, and are made anew when another renderer has come.
/// - A derived effect keeps onRender and supplies a program, texture coordinates and bindings; or it replaces
///   onRender by passes, for which the protected operations are the pieces.
/// - Intermediate passes go into render targets of the project. No effect makes one.
/// - What can't be had (program, map, source) is left out of the draw without a word.
namespace helvantine
{

class DepthStencilState;
class Shader;
class TextureSampler;

/// A textured quad, and the base of all 2D effects that read textures.
class HELVANTINE_FX_API TextureEffect : public Effect2D
{
    HELVANTINE_PLUGIN_CLASS(TextureEffect)

    /// The GPU objects of all texture effects; in TextureEffectSharedData.h.
    class TextureEffectSharedData;
    /// Their programs, compiled at first use; in TextureEffectSharedData.h.
    class TextureEffectShaderCache;

    TextureEffect();
    ~TextureEffect() override;

    void onRender(FxRenderContext& context) override;
    /// Draws all variants with each blend mode that can come, on a quad without area.
    void onWarmUp(FxWarmUpContext& context) override;
    void onPropertyChanged(PropertyBase* property) override;

    static TextureEffectSharedData* s_sharedData;   ///< null while there is no texture effect
    static TextureEffectShaderCache* s_shaderCache; ///< null while there is no texture effect

protected:
    /// Fills the shared vertex buffer for the final quad.
    virtual void writeVertices(FxRenderContext& context);

public:
    /// Binds what the program reads besides the common constants and slot 0. What it binds stays bound.
    virtual void bindEffectData(FxRenderContext& context);
    /// The program that onRender draws with.
    virtual TextureEffectType getEffectType();

protected:
    /// Draws once with each program that the effect can need; for effects that choose among several. The base draws as
    /// onRender does.
    virtual void drawVariants(FxWarmUpContext& context);
    /// For a property that may change, calls the function with each of its values from 0 to count - 1; else with the
    /// one it has. Nobody is told: it is put back before anybody looks.
    template <class T, class Function>
    static void forEachValue(const FxWarmUpContext& context, ValueProperty<T>& property, int32_t count,
                             Function function);

    /// For the number of an effect's cycles: one draws with all programs that many do.
    void drawWithCount(FxWarmUpContext& context, IntProperty& count);

    /// What a pass reads through one slot. Null leaves the slot as it is.
    struct Input
    {
        Texture* texture;
        TextureSampler* sampler;
    };

    /// Whether there is a renderer to draw with. Makes the shared objects if this renderer has none yet:
    /// each onRender asks first.
    static bool prepareSharedData();

    // Source

    bool hasSource() const { return m_textureResource || m_renderTargetResource; }
    /// The picture of the render target or of the texture; null without one.
    Texture* getSourceTexture() const;
    /// As "Wrap" chooses; any unknown number acts as "Mirror".
    TextureSampler* getWrapSampler() const;
    /// Null if the program can't be compiled.
    static Shader* getShader(TextureEffectType type);

    /// Once `property` is `own`: what that names becomes the target, null for anything but a render target.
    static void resolveTarget(const PropertyBase& property, const StringProperty& own,
                              SmartRef<RenderTargetResource>& target);
    /// Null for a resource that could not be made.
    static Texture* getTexture(const RenderTargetResource& resource);

    // Vertices, in the one buffer that the next draw reads

    using VertexColors = std::array<Vec4, 4>; ///< top left, top right, bottom left, bottom right

    /// The effect's own quad. secondUvRect goes to the second texture coordinates; null leaves them alone.
    void writeEffectQuad(const Vec4* secondUvRect);
    /// A quad over the whole target, in clip space.
    void writeFullTargetQuad();
    void writeFullTargetQuad(const VertexColors& colors);

    /// Calls writeVertices.
    void prepareVertices(FxRenderContext& context);
    /// Tells the renderer what the next draw fills: the quad written last, which the program moves by this matrix and
    /// discards no pixel of. Not for programs of authors, which may do otherwise.
    static void declareQuad(const Matrix& worldViewProjection);

    // Constants and states

    Matrix getWorldViewProjection() const;
    /// Common constants of the effect's own quad, with the effect's time; for onRender.
    void bindConstants(const FxRenderContext& context) const;
    /// Common constants of a pass: the texel is that of the top target's texture, the time stays as it was.
    static void bindPassConstants(const Matrix& worldViewProjection);
    static void bindStates(BlendMode blend, DepthStencilState* depth);
    /// For passes between: replace what is there, no depth. Once, before the first.
    static void bindPassStates();
    /// For the final quad: as "Blend" and "3D" choose.
    void bindFinalStates() const;

    // Draws

    /// Draws the quad with inputs in slots 0, 1, …, and unbinds vertices, textures and samplers.
    static void drawQuad(std::span<const Input> inputs);
    /// A pass between: draws the full-target quad into a target, from inputs in slots 0, 1, …. Without the
    /// program the target keeps what it holds.
    static void drawPass(TextureEffectType type, RenderTarget* target, std::span<const Input> inputs);
    /// Blurs by two passes a cycle over the full-target quad, first along rows into `vertical` (deliberately named so),
    /// then along columns into `horizontal`, whose texture it returns. At most 32 cycles.
    Texture* drawBlurChain(Texture* input, const RenderTargetResource& vertical,
                           const RenderTargetResource& horizontal, int32_t cycles);
    /// What a pass over the full-target quad reads, clamped. Where each pixel is a texel nothing is filtered: the
    /// picture is the same, for which software devices need half the time.
    Input getPassInput(Texture* texture, const RenderTargetResource& target) const;
    /// Draws inputs in slots 0, 1, … on the effect's own quad, as "Blend" and "3D" choose.
    void drawFinalPass(FxRenderContext& context, TextureEffectType type, std::span<const Input> inputs);
    /// Draws a texture on the effect's own quad, as "Blend", "3D" and "Wrap" choose.
    void drawFinalPass(FxRenderContext& context, TextureEffectType type, Texture* texture);

    SmartRef<PropertyGroup> m_attributesGroup;
    StringProperty m_textureProperty;
    Vec4Property m_color;
    IntProperty m_blend;
    SmartRef<PropertyGroup> m_uvGroup;
    Vec4Property m_uvRect; ///< left, top, right, bottom
    IntProperty m_wrap;
    SmartRef<TextureResource> m_textureResource; ///< one of the two, or neither
    SmartRef<RenderTargetResource> m_renderTargetResource;

private:
    void writeQuad(const Corners& corners, const VertexColors& colors, const Vec4* secondUvRect) const;

    bool m_warmingUp = false; ///< quads have no area then

    static unsigned s_instanceCount;
};

template <class T, class Function>
void TextureEffect::forEachValue(const FxWarmUpContext& context, ValueProperty<T>& property, int32_t count,
                                 Function function)
{
    const T own = property.m_value;
    function();
    for (int32_t value = 0; value < count && context.mayChange(property); ++value) {
        property.m_value = static_cast<T>(value);
        function();
    }
    property.m_value = own;
}

} // namespace helvantine
