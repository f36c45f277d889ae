// SPDX-License-Identifier: MIT
#include "resource/MissingResourceImporter.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/serialize/FxSerializer.h>

namespace helvantine
{

namespace
{

/// A resource to everyone, which keeps its file in the document.
class MissingResource final : public Resource
{
public:
    std::vector<std::string> getFiles() const override { return {getFilename()}; }
};

} // namespace

MissingResourceImporter::MissingResourceImporter(const UniqueId& classId)
    : m_info{PluginResourceImporter, classId, "", "Missing", false},
      m_attributesGroup(new PropertyGroup(this, "Attributes")), m_filename(this, KindString, "Filename")
{
    addProperties(*m_attributesGroup, {&m_filename});
    addInputGroup(m_attributesGroup.get());
}

void MissingResourceImporter::serialize(FxSerializer& serializer)
{
    if (serializer.m_writing) {
        serializer.m_out.writeUniqueId(m_info.id);
        serializer.m_out.writeBytes(m_record.data(), m_record.size());
        return;
    }

    // Reading finds where the record ends; but for the file name, its properties have no place here.
    const std::uint64_t begin = serializer.getBuffer()->tell();
    ResourceImporter::serialize(serializer);
    if (serializer.failed())
        return;
    const std::uint64_t end = serializer.getBuffer()->tell();
    m_record.resize(end - begin);
    serializer.getBuffer()->seek(begin);
    serializer.m_in.readBytes(m_record.data(), m_record.size());
}

ImportResult MissingResourceImporter::import(const char*, Resource*)
{
    return ImportResult("nothing here knows its importer's class " + uniqueIdToString(m_info.id));
}

bool MissingResourceImporter::getFileFilter(std::string&)
{
    return false;
}

bool MissingResourceImporter::getTitle(std::string&)
{
    return false;
}

Resource* MissingResourceImporter::createResource()
{
    auto* resource = new MissingResource;
    resource->setFilename(m_filename.m_value.c_str());
    return resource;
}

} // namespace helvantine
