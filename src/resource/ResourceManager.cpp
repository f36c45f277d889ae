// SPDX-License-Identifier: MIT
#include <helvantine/resource/ResourceManager.h>

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/MemoryVirtualFileSystem.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/serialize/FxSerializer.h>

#include <algorithm>

namespace helvantine
{

namespace
{

void collectResources(const SmartRef<Resource>& resource, std::vector<SmartRef<Resource>>& result)
{
    if (!resource->isFolder())
        result.push_back(resource);
    for (const auto& child : resource->getChildren())
        collectResources(child, result);
}

/// What is below a resource, each before its children.
void collectBelow(const Resource& resource, std::vector<Resource*>& result)
{
    for (const auto& child : resource.getChildren()) {
        result.push_back(child.get());
        collectBelow(*child, result);
    }
}

bool isIdLess(const Resource* resource, const UniqueId& id)
{
    return resource->getId() < id;
}

} // namespace

ResourceManager::ResourceManager(const char* cacheFolder) : m_root(new Resource())
{
    m_root->setIsFolder(true);
    if (!cacheFolder)
        return;
    m_cacheFolder = cacheFolder;
    std::string name;
    std::string extension;
    splitPath(withSeparator(m_cacheFolder).c_str(), m_cacheDrive, m_cacheDirectory, name, extension);
}

ResourceManager::~ResourceManager() = default;

std::vector<SmartRef<Resource>> ResourceManager::getResourcesExcludingFolders() const
{
    std::vector<SmartRef<Resource>> result;
    collectResources(m_root, result);
    return result;
}

void ResourceManager::addTemporaryResource(const UniqueId& id, Resource* resource)
{
    m_temporaryResources[id] = resource;
}

void ResourceManager::removeTemporaryResource(const UniqueId& id)
{
    m_temporaryResources.erase(id);
}

void ResourceManager::copyResourceFilesToCache(const std::vector<std::string>& files) const
{
    if (m_cacheFolder.empty())
        return;
    const std::string folder = m_cacheDrive + m_cacheDirectory;
    // The name below the folder is the one that a look-up there takes: neither ".." nor a link leads out.
    for (const std::string& source : files) {
        const std::string target = resolveInside(folder, source.c_str());
        if (!target.empty())
            copyFile(source.c_str(), target.c_str(), true);
        else
            reportProblem("resource", "'" + source + "' has no place below '" + folder + "'");
    }
}

void ResourceManager::serialize(FxSerializer& serializer)
{
    if (!serializer.m_writing) {
        bool isFolder = false; // the root is one
        serializer.m_in.readBool(isFolder);
    }
    serializer.announceRoot();
    m_root->serialize(serializer);
}

Resource* ResourceManager::findResourceOfType(const UniqueId& id, const TypeInfo* type) const
{
    Resource* inTree = findInTree(id);
    if (inTree && inTree->isOfType(type))
        return inTree;
    const auto found = m_temporaryResources.find(id);
    if (found != m_temporaryResources.end() && found->second && found->second->isOfType(type))
        return found->second.get();
    return nullptr;
}

/// What Resource::findResource finds from the root on. Effects look up a resource with each new value of a property:
/// a walk through the tree would cost the product of both.
Resource* ResourceManager::findInTree(const UniqueId& id) const
{
    if (m_root->getId() == id)
        return m_root.get();
    if (m_knownEdits != Resource::getTreeEdits())
        refreshIndex();
    const auto found = std::lower_bound(m_index.begin(), m_index.end(), id, isIdLess);
    return found != m_index.end() && (*found)->getId() == id ? *found : nullptr;
}

void ResourceManager::refreshIndex() const
{
    m_knownEdits = Resource::getTreeEdits();
    m_index.clear();
    collectBelow(*m_root, m_index);
    std::stable_sort(m_index.begin(), m_index.end(), [](const Resource* a, const Resource* b) {
        return a->getId() < b->getId(); // the first in the tree stays the first of its id
    });
}

ResourceManager* getResourceManager()
{
    Document* document = g_application ? g_application->getDocument() : nullptr;
    return document ? document->getResourceManager() : nullptr;
}

} // namespace helvantine
