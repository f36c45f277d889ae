// SPDX-License-Identifier: MIT
#include <helvantine/resource/TextureResource.h>

#include "resource/LoadPayload.h"

namespace helvantine
{

TextureResource::TextureResource() = default;

TextureResource::~TextureResource() = default;

std::vector<std::string> TextureResource::getFiles() const
{
    return {getFilename()};
}

bool TextureResource::load(const char* path)
{
    return loadPayload(*this, m_texture, &loadTextureFromCache, path);
}

} // namespace helvantine
