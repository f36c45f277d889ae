// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/resource/Resource.h>

#include <helvantine/renderer/Texture.h>

namespace helvantine
{

/// A texture read from an image file.
class HELVANTINE_FX_API TextureResource : public Resource
{
    HELVANTINE_PLUGIN_CLASS(TextureResource)

    TextureResource();
    ~TextureResource() override;

    std::vector<std::string> getFiles() const override;

    /// On success the path becomes the resource's file name and its name, whole. On failure everything stays
    /// as it was.
    bool load(const char* path);

    /// Null until a load succeeds.
    Texture* getTexture() const { return m_texture.get(); }

private:
    SmartRef<Texture> m_texture;
};

} // namespace helvantine
