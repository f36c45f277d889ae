// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/object/Plugin.h>
#include <helvantine/resource/ResourceImporter.h>

#include <cstdint>
#include <string>
#include <vector>

/// Laws of resources.
///
/// - A resource is the loaded thing, its importer the recipe that made it. A document stores recipes, never
///   payloads: reading it runs each importer again.
/// - Effects and nodes hold no file name. A resource property holds the text of a resource's id, and whoever
///   reads it asks the document's ResourceManager.
/// - The tree owns its resources; so does everyone who holds a SmartRef. A resource that has left the tree
///   lives on in the effects that draw with it.
/// - Folders come before other resources, and within both the names run in descending byte order.
/// - Text arguments are never null unless it is said that they may be.
namespace helvantine
{

class FxSerializer;

/// A thing that a project imported or generated, or, with the folder flag set, a group of such things.
class HELVANTINE_FX_API Resource : public Plugin
{
    HELVANTINE_PLUGIN_CLASS(Resource)

    Resource();
    ~Resource() override;

    /// The source files that the resource needs beside its document, by the names they are opened by.
    virtual std::vector<std::string> getFiles() const;

    /// Appends the child, becomes its parent and sorts. Neither takes the child from an earlier parent nor
    /// looks for duplicates.
    void addResource(Resource* child);

    /// Drops the first child with the argument's id, and clears the argument's parent. Without such a child
    /// nothing changes, the argument's parent included.
    void removeResource(Resource* child);

    /// Moves this resource, with what is below it, to another folder. False, and a problem is reported, for one that is
    /// in no tree, and for a folder that is or lies below this resource or is in another tree.
    bool moveTo(Resource& folder);

    /// Depth first, this resource included; null if there is none. Borrowed.
    Resource* findResource(const UniqueId& id) const;

    /// Sorts the children, this level only.
    void sort();

    void setId(const UniqueId& id);
    void setName(const char* name) { m_name = name; }
    void setDescription(const char* description) { m_description = description; }
    void setFilename(const char* filename) { m_filename = filename; }
    void setExpanded(bool expanded) { m_expanded = expanded; }
    void setIsFolder(bool isFolder) { m_isFolder = isFolder; }
    void setImporter(ResourceImporter* importer);

    const UniqueId& getId() const { return m_id; }
    const std::string& getName() const { return m_name; }
    const std::string& getDescription() const { return m_description; }
    bool isFolder() const { return m_isFolder; }
    bool isExpanded() const { return m_expanded; }
    /// Null while in no tree. Stale once the parent has gone: a child that outlives it isn't told.
    Resource* getParent() const { return m_parent; }
    const std::vector<SmartRef<Resource>>& getChildren() const { return m_children; }
    ResourceImporter* getImporter() const { return m_importer.get(); }
    const std::string& getFilename() const { return m_filename; }

    /// A number that rises with every change of a tree: what is in it, in which order, under which ids.
    static std::uint32_t getTreeEdits() { return s_treeEdits; }

    /// Writes the whole record; reads it from behind the folder flag and the importer, which whoever makes
    /// the resource has read to know what to make.
    void serialize(FxSerializer& serializer);

private:
    void append(Resource* child);
    bool canMoveTo(const Resource& folder) const;
    void write(FxSerializer& serializer) const;
    void read(FxSerializer& serializer);
    void readChild(FxSerializer& serializer);

    static std::uint32_t s_treeEdits; ///< of all trees; 0 before the first

    UniqueId m_id;
    std::string m_name;
    std::string m_description; ///< free text for the editor
    bool m_isFolder = false;
    bool m_expanded = true;       ///< state of the editor's tree, kept with the document
    Resource* m_parent = nullptr; ///< borrowed; set by addResource, cleared by removeResource
    int m_listCount = 0;          ///< lists of children that hold it, whatever the parent says
    std::vector<SmartRef<Resource>> m_children;
    SmartRef<ResourceImporter> m_importer; ///< null for folders
    std::string m_filename;                ///< as last loaded; empty for folders and generated resources
};

} // namespace helvantine
