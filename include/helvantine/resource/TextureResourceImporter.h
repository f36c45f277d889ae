// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/resource/FileResourceImporter.h>

namespace helvantine
{

/// Imports image files as TextureResource.
class HELVANTINE_FX_API TextureResourceImporter : public FileResourceImporter
{
    HELVANTINE_PLUGIN_CLASS(TextureResourceImporter)

    TextureResourceImporter();

protected:
    Resource* newResource() const override;
    const TypeInfo* getResourceType() const override;
    bool load(Resource& resource, const char* path) const override;
};

} // namespace helvantine
