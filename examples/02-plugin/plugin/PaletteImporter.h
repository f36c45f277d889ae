// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/resource/FileResourceImporter.h>

namespace silk
{

/// Makes a PaletteResource from its file. The document stores this, not the colours.
class PaletteImporter : public helvantine::FileResourceImporter
{
    HELVANTINE_PLUGIN_CLASS(PaletteImporter)

    PaletteImporter();

protected:
    helvantine::Resource* newResource() const override;
    const helvantine::TypeInfo* getResourceType() const override;
    bool load(helvantine::Resource& resource, const char* path) const override;
};

} // namespace silk
