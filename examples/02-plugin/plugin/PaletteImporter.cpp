// SPDX-License-Identifier: MIT
#include "PaletteImporter.h"

#include "PaletteResource.h"

namespace silk
{

using namespace helvantine;

HELVANTINE_PLUGIN_RECORDS(PaletteImporter, ResourceImporter, PluginResourceImporter,
                          "5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A03", "Silk/Palette", "Palette", true)

PaletteImporter::PaletteImporter()
    : FileResourceImporter("Import Palette", "Palettes (*.palette)|*.palette|All files (*.*)|*.*")
{
}

Resource* PaletteImporter::newResource() const
{
    return new PaletteResource;
}

const TypeInfo* PaletteImporter::getResourceType() const
{
    return &PaletteResource::m_typeInfo;
}

bool PaletteImporter::load(Resource& resource, const char* path) const
{
    return static_cast<PaletteResource&>(resource).load(path);
}

} // namespace silk
