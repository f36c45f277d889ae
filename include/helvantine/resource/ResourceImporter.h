// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/object/Object.h>

#include <cstdint>
#include <string>

namespace helvantine
{

class Resource;

/// What an import made, or why it made nothing.
struct HELVANTINE_FX_API ImportResult
{
    enum Status : int32_t
    {
        Success = 0,
        Failure = 1
    };

    ImportResult();
    explicit ImportResult(Resource* made);     ///< success
    explicit ImportResult(std::string whyNot); ///< failure; the text may be empty
    ImportResult(const ImportResult&);
    ImportResult& operator=(const ImportResult&);
    ~ImportResult();

    int32_t status = Failure;
    std::string message;
    SmartRef<Resource> resource; ///< null on failure
};

/// The recipe of a resource: its properties say how to make the resource again.
class HELVANTINE_FX_API ResourceImporter : public Object
{
    HELVANTINE_PLUGIN_CLASS(ResourceImporter)

    /// Makes a resource, or loads into an existing one of the importer's resource class.
    ///
    /// A file name that isn't null replaces the importer's own. On success the importer becomes the
    /// resource's importer; the caller adds a new resource to the tree, as ResourceManager::addImported does. On
    /// failure an existing resource stays as it was. An existing one that no SmartRef holds goes with the result,
    /// which is reported.
    virtual ImportResult import(const char* filename, Resource* existing) = 0;

    virtual bool usesFile() = 0;

    /// The filter of a file dialog, as "label|patterns|…"; false for an importer without a file, which leaves
    /// the argument alone.
    virtual bool getFileFilter(std::string& out) = 0;
    virtual bool getTitle(std::string& out) = 0; ///< of the import dialog

    /// A new resource of the importer's class, which nobody holds yet, without a payload, which stands for one that can't be made now.
    /// Null if its class can't be created.
    virtual Resource* createResource() = 0;

protected:
    static void checkIsHeld(const Resource* existing);
};

} // namespace helvantine
