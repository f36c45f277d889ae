// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/effects2d/TextureEffect.h>

namespace helvantine
{

/// What the effects share that read a second texture through the second texture coordinates: its properties, which
/// stand behind the inherited ones, and its place in slot 1. No class of documents.
class HELVANTINE_FX_API TwoTextureEffect : public TextureEffect
{
public:
    void onPropertyChanged(PropertyBase* property) override;

protected:
    TwoTextureEffect(const char* textureName, const char* uvRectName);
    ~TwoTextureEffect() override;

    void writeVertices(FxRenderContext& context) override;
    /// As "Wrap" chooses, like the first. Without a texture slot 1 stays as it is, deliberately.
    void bindSecondTexture();

    StringProperty m_secondTextureProperty;
    /// A texture only: unlike the first input, deliberately, this one takes no render target.
    SmartRef<TextureResource> m_secondTextureResource;
    Vec4Property m_secondUvRect; ///< left, top, right, bottom
};

} // namespace helvantine
