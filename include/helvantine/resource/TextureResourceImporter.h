// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/resource/FileResourceImporter.h>

namespace helvantine
{

/// Imports image files as TextureResource.
class HELVANTINE_FX_API TextureResourceImporter : public FileResourceImporter
{
public:
    static const TypeInfo m_typeInfo;
    static PluginInfo s_plugininfo;

    TextureResourceImporter();

    const TypeInfo* getTypeInfo() const override { return &m_typeInfo; }
    bool isOfType(const TypeInfo* type) const override;
    const PluginInfo* getPluginInfo() const override { return &s_plugininfo; }

    Resource* createResource() override;

protected:
    bool load(Resource& resource, const char* path) override;
    const TypeInfo* getResourceType() const override;
};

} // namespace helvantine
