// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Matrix.h>
#include <helvantine/core/Vector.h>
#include <helvantine/effects2d/RendererMark.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/renderer/ConstantBuffer.h>
#include <helvantine/renderer/DepthStencilState.h>
#include <helvantine/renderer/RasterizerState.h>
#include <helvantine/renderer/Shader.h>
#include <helvantine/renderer/TextureSampler.h>
#include <helvantine/renderer/VertexBuffer.h>
#include <helvantine/renderer/VertexDeclaration.h>

#include <map>
#include <optional>

namespace helvantine
{

/// The one vertex buffer, the common constants, states and samplers of all texture effects.
///
/// Everything is null until create succeeds.
class HELVANTINE_FX_API TextureEffect::TextureEffectSharedData
{
public:
    /// One corner of a quad; the buffer holds four, drawn as a strip.
    struct Vertex
    {
        Vec3 position;
        Vec4 color;
        Vec2 texCoord0;
        Vec2 texCoord1;
    };
    static_assert(sizeof(Vertex) == 44);

    /// Register b0 of all programs.
    struct Constants
    {
        Matrix worldViewProjection; ///< transposed
        Vec2 invScreenSize;
        float time; ///< seconds
        float unused;
    };
    static_assert(sizeof(Constants) == 80);

    /// Makes everything with the current renderer, in place of what was there; false without one.
    bool create();
    /// Whether what is there was made with the current renderer.
    bool isCurrent() const { return m_renderer.isCurrent(); }

    SmartRef<VertexBuffer> m_vertexBuffer;
    std::optional<Corners> m_quad; ///< what writeQuad has put there
    SmartRef<VertexDeclaration> m_vertexDeclaration;
    SmartRef<RasterizerState> m_rasterizerState;
    SmartRef<DepthStencilState> m_depthOffState;
    SmartRef<DepthStencilState> m_depthOnState;
    SmartRef<TextureSampler> m_clampSampler;
    SmartRef<TextureSampler> m_wrapSampler;
    SmartRef<TextureSampler> m_mirrorSampler;
    SmartRef<ConstantBuffer> m_constantBuffer;
    SmartRef<TextureSampler> m_pointSampler; ///< clamps; for depths, and for passes that read texel for texel

private:
    RendererMark m_renderer;
};

/// The programs of the effect shader library, each compiled when it is first asked for.
class HELVANTINE_FX_API TextureEffect::TextureEffectShaderCache
{
public:
    /// Null if it can't be compiled, which is remembered, or if there is no renderer, which isn't. Borrowed.
    Shader* getShader(TextureEffectType type);
    void clear() { m_shaders.clear(); }

private:
    std::map<TextureEffectType, SmartRef<Shader>> m_shaders;
};

} // namespace helvantine
