// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec4.h>
#include <helvantine/renderer/Api.h>

#include <memory>

namespace helvantine
{

class RenderTarget;
class Texture;

/// Draws textures over the whole viewport of the top target, without depth test.
///
/// One for each Renderer, which owns it. It leaves its states, its shader and the slots b13, t15 and s15 bound:
/// callers bind theirs again.
class HELVANTINE_RENDERER_API ScreenRenderer
{
public:
    ScreenRenderer();
    ~ScreenRenderer();
    ScreenRenderer(const ScreenRenderer&) = delete;
    ScreenRenderer& operator=(const ScreenRenderer&) = delete;

    /// The texture times color. blend: by alpha, else it replaces. mip: the level to read, -1 leaves it to
    /// the sampler. A null texture reads as zero.
    void drawTexture(Texture* texture, const Vec4& color, bool blend, int mip);

    /// Blurs across into blurV, then down into blurH, and draws blurH's texture as drawTexture does.
    /// Both targets must have colour; without them nothing is drawn.
    void drawBlur(Texture* texture, RenderTarget* blurV, RenderTarget* blurH, const Vec4& color, bool blend,
                  int mip);

    struct Impl;

private:
    std::unique_ptr<Impl> m_impl;
};

} // namespace helvantine
