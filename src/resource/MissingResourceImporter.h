// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/resource/ResourceImporter.h>

#include <vector>

namespace helvantine
{

/// Stands for an importer whose class nobody here knows: keeps its record and writes it back.
///
/// So a document survives a save by a host that lacks one of its plugin libraries, the file that a
/// FileResourceImporter names included. The record is taken for a plain object's; a class that adds fields of
/// its own behind that breaks the stream.
class MissingResourceImporter : public ResourceImporter
{
public:
    explicit MissingResourceImporter(const UniqueId& classId);

    const PluginInfo* getPluginInfo() const override { return &m_info; }

    void serialize(FxSerializer& serializer) override;
    ImportResult import(const char* filename, Resource* existing) override;
    bool usesFile() override { return false; }
    bool getFileFilter(std::string& out) override;
    bool getTitle(std::string& out) override;
    Resource* createResource() override;

private:
    PluginInfo m_info; ///< with the unknown class's id
    SmartRef<PropertyGroup> m_attributesGroup;
    StringProperty m_filename;           ///< read from the record, empty if it has none
    std::vector<unsigned char> m_record; ///< from behind the class id
};

} // namespace helvantine
