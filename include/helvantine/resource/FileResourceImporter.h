// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/resource/ResourceImporter.h>

namespace helvantine
{

/// What importers of files share: the property "Filename" and the procedure of an import.
///
/// A derived class names its resource class and how that loads a path.
class HELVANTINE_FX_API FileResourceImporter : public ResourceImporter
{
public:
    ImportResult import(const char* filename, Resource* existing) override;
    bool usesFile() override { return true; }
    bool getFileFilter(std::string& out) override;
    bool getTitle(std::string& out) override;
    /// The resource bears the importer's file name, so that the file stays with the document.
    Resource* createResource() override;

    const std::string& getFilename() const { return m_filename.m_value; }

protected:
    /// Both texts are kept by pointer.
    FileResourceImporter(const char* title, const char* fileFilter);
    ~FileResourceImporter() override;

    /// A new, empty resource of the class that the importer is for.
    virtual Resource* newResource() const = 0;
    virtual const TypeInfo* getResourceType() const = 0;
    /// resource is of that class.
    virtual bool load(Resource& resource, const char* path) const = 0;

private:
    const char* m_title;
    const char* m_fileFilter;
    SmartRef<PropertyGroup> m_attributesGroup;
    StringProperty m_filename;
};

} // namespace helvantine
