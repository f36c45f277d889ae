// SPDX-License-Identifier: MIT
#include <helvantine/resource/FileResourceImporter.h>

#include <helvantine/object/AddProperties.h>
#include <helvantine/resource/Resource.h>

namespace helvantine
{

FileResourceImporter::FileResourceImporter(const char* title, const char* fileFilter)
    : m_title(title), m_fileFilter(fileFilter), m_attributesGroup(new PropertyGroup(this, "Attributes")),
      m_filename(this, KindString, "Filename")
{
    addProperties(*m_attributesGroup, {&m_filename});
    addInputGroup(m_attributesGroup.get());
}

FileResourceImporter::~FileResourceImporter() = default;

ImportResult FileResourceImporter::import(const char* filename, Resource* existing)
{
    if (filename)
        m_filename.assign(std::string_view(filename));

    // An existing resource isn't counted here: on failure it stays the caller's as it was.
    SmartRef<Resource> made;
    if (!existing)
        made = newResource();
    Resource* resource = existing ? existing : made.get();
    if (!resource->isOfType(getResourceType()) || !load(*resource, getFilename().c_str()))
        return ImportResult(std::string());
    checkIsHeld(existing);
    resource->setImporter(this);
    return ImportResult(resource);
}

bool FileResourceImporter::getFileFilter(std::string& out)
{
    out = m_fileFilter;
    return true;
}

bool FileResourceImporter::getTitle(std::string& out)
{
    out = m_title;
    return true;
}

Resource* FileResourceImporter::createResource()
{
    Resource* resource = newResource();
    resource->setFilename(getFilename().c_str());
    return resource;
}

} // namespace helvantine
