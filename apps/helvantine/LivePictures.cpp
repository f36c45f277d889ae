// SPDX-License-Identifier: MIT
#include "LivePictures.h"

#include "LiveIncludes.h"

#include <helvantine/core/Path.h>
#include <helvantine/host/Document.h>
#include <helvantine/renderer/Texture.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResource.h>

#include <utility>

namespace helvantine::tool
{

namespace
{

/// The document's own files and the included ones stand aside while it lives, so that a path means the file on disk.
class RealPaths
{
public:
    RealPaths(Document& document, LiveIncludes& includes) : m_document(document), m_includes(includes)
    {
        enable(false);
    }
    ~RealPaths() { enable(true); }
    RealPaths(const RealPaths&) = delete;
    RealPaths& operator=(const RealPaths&) = delete;

private:
    void enable(bool others)
    {
        m_document.enableVfs(others);
        m_includes.setEnabled(others);
    }

    Document& m_document;
    LiveIncludes& m_includes;
};

/// From now on the resource holds what is in the file; its name and its own file's stay.
bool reload(TextureResource& resource, const std::string& path)
{
    const std::string name = resource.getName();
    const std::string file = resource.getFilename();
    if (!resource.load(path.c_str()))
        return false;
    resource.setName(name.c_str());
    resource.setFilename(file.c_str());
    return true;
}

} // namespace

LivePictures::LivePictures(Document& document, LiveIncludes& includes, Say say)
    : m_document(document), m_includes(includes), m_say(std::move(say))
{
}

LivePictures::~LivePictures() = default;

void LivePictures::offer(const std::string& name, const std::string& path)
{
    if (getTextures(name).empty())
        return m_say(path + ": no texture was loaded from a file of this name");
    std::erase_if(m_candidates,
                  [&](const Candidate& candidate) { return candidate.path == path && !candidate.loading; });
    for (Candidate& candidate : m_candidates)
        candidate.outdated |= candidate.path == path;
    m_candidates.push_back({name, path, nullptr});
}

bool LivePictures::update()
{
    bool changed = false;
    while (!m_candidates.empty()) {
        Candidate& candidate = m_candidates.front();
        const RealPaths realPaths(m_document, m_includes);
        if (!candidate.loading)
            candidate.loading = beginTextureLoading(candidate.path.c_str());
        if (!candidate.loading->isDone())
            break;
        changed |= !candidate.outdated && finish(candidate);
        m_candidates.pop_front();
    }
    return changed;
}

bool LivePictures::finish(const Candidate& candidate)
{
    if (const std::string& error = candidate.loading->getErrorText(); !error.empty()) {
        m_say(error);
        return false;
    }
    bool loaded = true;
    for (const SmartRef<TextureResource>& texture : getTextures(candidate.name))
        loaded = loaded && reload(*texture, candidate.path);
    m_say(candidate.path + (loaded ? ": taken over" : ": can't be read as an image"));
    return loaded;
}

std::vector<SmartRef<TextureResource>> LivePictures::getTextures(const std::string& name) const
{
    std::vector<SmartRef<TextureResource>> textures;
    for (const SmartRef<Resource>& resource : m_document.getResourceManager()->getResourcesExcludingFolders())
    {
        if (resource->isOfType(&TextureResource::m_typeInfo) &&
            getFilename(resource->getFilename().c_str()) == name)
            textures.emplace_back(static_cast<TextureResource*>(resource.get()));
    }
    return textures;
}

} // namespace helvantine::tool
