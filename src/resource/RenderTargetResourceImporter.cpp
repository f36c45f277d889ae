// SPDX-License-Identifier: MIT
#include <helvantine/resource/RenderTargetResourceImporter.h>

#include <helvantine/object/AddProperties.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/resource/RenderTargetResource.h>

namespace helvantine
{

using Format = RenderTargetResource::Format;

RenderTargetResourceImporter::RenderTargetResourceImporter()
    : m_attributesGroup(new PropertyGroup(this, "Attributes")), m_width(this, KindInt, "Width"),
      m_height(this, KindInt, "Height"), m_format(this, KindEnum, "Format"),
      m_multisampleCount(this, KindInt, "Multisample Count"),
      m_multisampleQuality(this, KindInt, "Multisample Quality"),
      m_depthBufferGroup(new PropertyGroup(this, "Depth Buffer")),
      m_depthBuffer(this, KindBool, "Depth Buffer"), m_depthFormat(this, KindEnum, "Depth Format")
{
    m_width.setDefault(256);
    m_height.setDefault(256);
    m_format.setDefault(Format::RGBA8);
    m_format.m_enumLabels = {{Format::RGBA8, "RGBA8"}, {Format::RGBA32F, "RGBA32F"}, {Format::R16F, "R16F"}};
    m_multisampleCount.setDefault(1);
    m_multisampleQuality.setDefault(0);
    addProperties(*m_attributesGroup,
                  {&m_width, &m_height, &m_format, &m_multisampleCount, &m_multisampleQuality});
    addInputGroup(m_attributesGroup.get());

    m_depthBuffer.setDefault(true);
    m_depthFormat.setDefault(Format::D24S8);
    m_depthFormat.m_enumLabels = {{Format::D24S8, "D24S8"}};
    addProperties(*m_depthBufferGroup, {&m_depthBuffer, &m_depthFormat});
    addInputGroup(m_depthBufferGroup.get());
}

RenderTargetResourceImporter::~RenderTargetResourceImporter() = default;

ImportResult RenderTargetResourceImporter::import(const char*, Resource* existing)
{
    // An existing resource isn't counted here: on failure it stays the caller's as it was.
    SmartRef<Resource> made;
    if (!existing)
        made = createResource();
    auto* target = castTo<RenderTargetResource>(existing ? existing : made.get());
    if (!target || !target->create(m_width.m_value, m_height.m_value, static_cast<Format>(m_format.m_value),
                                   m_multisampleCount.m_value, m_multisampleQuality.m_value,
                                   m_depthBuffer.m_value, static_cast<Format>(m_depthFormat.m_value)))
        return ImportResult("Unable to create rendertarget");
    checkIsHeld(existing);
    target->setImporter(this);
    return ImportResult(target);
}

bool RenderTargetResourceImporter::getFileFilter(std::string&)
{
    return false;
}

bool RenderTargetResourceImporter::getTitle(std::string& out)
{
    out = "Import Render Target";
    return true;
}

Resource* RenderTargetResourceImporter::createResource()
{
    return createPluginOfType<RenderTargetResource>(RenderTargetResource::s_plugininfo.id);
}

} // namespace helvantine
