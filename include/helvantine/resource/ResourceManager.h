// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/resource/RenderTargetResource.h>
#include <helvantine/resource/Resource.h>

#include <cstddef>
#include <cstdint>
#include <map>

namespace helvantine
{

class MemoryVirtualFileSystem;
class TextureResource;
struct TexturePixels;

/// The resources of one document: the tree, the temporary resources beside it, and the cache folder.
class HELVANTINE_FX_API ResourceManager
{
public:
    /// cacheFolder may be null: the paths then stay empty.
    explicit ResourceManager(const char* cacheFolder);
    ~ResourceManager();
    ResourceManager(const ResourceManager&) = delete;
    ResourceManager& operator=(const ResourceManager&) = delete;

    /// The root folder, which lives as long as the manager. Borrowed.
    Resource* getRoot() const { return m_root.get(); }

    // New resources of the tree, which owns them: in that folder, or below the root for null. Null, and a problem is
    // reported, where one can't be made. Without a renderer they have no payload until the saved document is loaded.

    /// What the importer makes. filename: null leaves the importer's own, and suits those without a file.
    Resource* addImported(const SmartRef<ResourceImporter>& importer, const char* filename,
                          Resource* folder = nullptr);
    TextureResource* addTexture(const char* filename, Resource* folder = nullptr);
    /// A picture in memory, as the bytes of a file of that name ("sun.png"), or as pixels of 8-bit channels. It becomes
    /// a file of the document: in the cache folder, or in memory without one. A name that is taken is refused.
    TextureResource* addTexture(const char* filename, const void* bytes, std::size_t size,
                                Resource* folder = nullptr);
    TextureResource* addTexture(const char* filename, const TexturePixels& pixels,
                                Resource* folder = nullptr);
    /// width and height in pixels; with a depth buffer.
    RenderTargetResource* addRenderTarget(const char* name, int width, int height,
                                          RenderTargetResource::Format format = RenderTargetResource::RGBA8,
                                          Resource* folder = nullptr);
    Resource* addFolder(const char* name, Resource* folder = nullptr);

    /// All resources of the tree that are no folders, a parent before its children.
    std::vector<SmartRef<Resource>> getResourcesExcludingFolders() const;

    /// Publishes a resource under an id without storing it in the document; replaces an earlier one.
    void addTemporaryResource(const UniqueId& id, Resource* resource);
    void removeTemporaryResource(const UniqueId& id);

    /// The tree's resource of that id and type, else the temporary one, else null. Borrowed.
    /// A tree resource of another type doesn't hide a temporary one.
    template <class T>
    T* findResourceOfType(const UniqueId& id) const
    {
        return static_cast<T*>(findResourceOfType(id, &T::m_typeInfo));
    }

    /// Copies each file below the cache folder under its own whole directory, without its drive; a ".." stops
    /// at the folder. Missing folders are made, the cache folder itself included. Failed copies are passed over with a
    /// report, and without a cache folder nothing is copied.
    void copyResourceFilesToCache(const std::vector<std::string>& files) const;

    void serialize(FxSerializer& serializer);

    const std::string& getCacheFolder() const { return m_cacheFolder; }

private:
    bool addFile(const char* filename, const void* bytes, std::size_t size);
    bool writeFile(const char* filename, const void* bytes, std::size_t size);
    void removeFile(const char* filename);
    Resource* findResourceOfType(const UniqueId& id, const TypeInfo* type) const;
    Resource* findInTree(const UniqueId& id) const;
    void refreshIndex() const;

    std::string m_cacheFolder;
    std::string m_cacheDrive;
    std::string m_cacheDirectory;
    SmartRef<Resource> m_root;
    std::map<UniqueId, SmartRef<Resource>> m_temporaryResources;
    SmartRef<MemoryVirtualFileSystem> m_memoryFiles; ///< null while there are none
    /// What is below the root, by id; made anew by the first look-up after an edit of any tree. Borrowed.
    mutable std::vector<Resource*> m_index;
    mutable std::uint32_t m_knownEdits = 0;
};

/// The resource manager of the application's document; null without a document.
HELVANTINE_FX_API ResourceManager* getResourceManager();

/// What the value of a resource property names in the application's document; null if it names nothing of
/// that type. Borrowed.
template <class T>
T* findResourceOfType(const std::string& idText)
{
    const ResourceManager* manager = getResourceManager();
    return manager ? manager->findResourceOfType<T>(stringToUniqueId(idText.c_str())) : nullptr;
}

} // namespace helvantine
