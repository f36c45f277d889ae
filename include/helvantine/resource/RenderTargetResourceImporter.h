// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/resource/ResourceImporter.h>

namespace helvantine
{

/// Makes RenderTargetResource from its properties; the one importer without a file.
///
/// A change of its properties takes effect with the next import.
class HELVANTINE_FX_API RenderTargetResourceImporter : public ResourceImporter
{
    HELVANTINE_PLUGIN_CLASS(RenderTargetResourceImporter)

    RenderTargetResourceImporter();
    ~RenderTargetResourceImporter() override;

    ImportResult import(const char* filename, Resource* existing) override;
    bool usesFile() override { return false; }
    bool getFileFilter(std::string& out) override;
    bool getTitle(std::string& out) override;
    Resource* createResource() override;

private:
    SmartRef<PropertyGroup> m_attributesGroup;
    IntProperty m_width;
    IntProperty m_height;
    IntProperty m_format;
    IntProperty m_multisampleCount;
    IntProperty m_multisampleQuality;
    SmartRef<PropertyGroup> m_depthBufferGroup;
    BoolProperty m_depthBuffer;
    IntProperty m_depthFormat;
};

} // namespace helvantine
