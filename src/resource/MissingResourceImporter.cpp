// SPDX-License-Identifier: MIT
#include "resource/MissingResourceImporter.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/serialize/FxSerializer.h>

namespace helvantine
{

MissingResourceImporter::MissingResourceImporter(const UniqueId& classId)
    : m_info{PluginResourceImporter, classId, "", "Missing", false}
{
}

void MissingResourceImporter::serialize(FxSerializer& serializer)
{
    if (serializer.m_writing) {
        serializer.m_out.writeUniqueId(m_info.id);
        serializer.m_out.writeBytes(m_record.data(), m_record.size());
        return;
    }

    // Reading finds where the record ends; its groups and properties have no place here and are dropped.
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
    return new Resource();
}

} // namespace helvantine
