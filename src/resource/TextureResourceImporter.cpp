// SPDX-License-Identifier: MIT
#include <helvantine/resource/TextureResourceImporter.h>

#include <helvantine/resource/TextureResource.h>

namespace helvantine
{

TextureResourceImporter::TextureResourceImporter()
    : FileResourceImporter("Import Texture", "Texture files (*.png;*.bmp;*.dds;*.tga;*.jpg)|"
                                             "*.png;*.bmp;*.dds;*.tga;*.jpg|All files (*.*)|*.*")
{
}

Resource* TextureResourceImporter::newResource() const
{
    return new TextureResource();
}

const TypeInfo* TextureResourceImporter::getResourceType() const
{
    return &TextureResource::m_typeInfo;
}

bool TextureResourceImporter::load(Resource& resource, const char* path) const
{
    return static_cast<TextureResource&>(resource).load(path);
}

} // namespace helvantine
