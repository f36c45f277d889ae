// SPDX-License-Identifier: MIT
#include "LiveFolder.h"

#include "FileExtension.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/TextureResource.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <utility>

namespace helvantine::tool
{

namespace
{

constexpr std::string_view shaderExtension = ".hlsl";
constexpr std::array<std::string_view, 6> imageExtensions = {".png", ".jpg", ".jpeg", ".tga", ".bmp", ".dds"};
constexpr std::uintmax_t largestText = 1 << 20; ///< bytes, as the compiler has it

bool isImage(const std::string& name)
{
    return std::ranges::find(imageExtensions, getExtension(name)) != imageExtensions.end();
}

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

LiveFolder::LiveFolder(Document& document, Say say)
    : m_document(document), m_say(std::move(say)), m_includes(new LiveIncludes),
      m_shaders(document, *m_includes, m_say)
{
}

LiveFolder::~LiveFolder()
{
    m_document.getFileSystem()->removeVfs(m_includes.get());
}

std::string LiveFolder::open(const std::string& folder)
{
    std::error_code error;
    m_folder = std::filesystem::absolute(folder, error);
    m_includes->setFolder((m_folder / "").string());
    m_document.getFileSystem()->addVfsAtTop(m_includes.get());
    return m_watch.open(folder);
}

bool LiveFolder::update(double now)
{
    bool changed = false;
    std::set<std::string> texts;
    while (m_watch.take(now, m_name)) {
        if (isImage(m_name))
            changed |= replaceTextures((m_folder / m_name).string(), m_name);
        else
            texts.insert(m_name);
    }
    if (!texts.empty())
        bringTexts(texts);
    return m_shaders.update() || changed;
}

/// Whole texts first, since they tell what is included.
void LiveFolder::bringTexts(const std::set<std::string>& names)
{
    std::set<std::string> unknown;
    for (const std::string& name : names) {
        m_includes->forget(name);
        if (getExtension(name) != shaderExtension)
            continue;
        const std::string node = std::filesystem::path(name).stem().string();
        if (m_shaders.hasNode(node))
            offerShader((m_folder / name).string(), node);
        else
            unknown.insert(name);
    }
    for (const std::string& name : m_shaders.offerIncluding(names))
        unknown.erase(name);
    for (const std::string& name : unknown)
        m_say((m_folder / name).string() + ": no shader node has this name, and none includes it");
}

void LiveFolder::offerShader(const std::string& path, const std::string& node)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) // to open a pipe would wait for who writes to it
        return m_say(path + ": can't be read");
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!error && size > largestText)
        return m_say(formatString("%s: has %llu bytes, more than %llu", path.c_str(),
                                  static_cast<unsigned long long>(size),
                                  static_cast<unsigned long long>(largestText)));
    std::string text(error ? 0 : size, '\0');
    std::ifstream file(path, std::ios::binary);
    if (error || !file.read(text.data(), static_cast<std::streamsize>(size)))
        return m_say(path + ": can't be read");
    m_shaders.offer(node, path, text);
}

bool LiveFolder::replaceTextures(const std::string& path, const std::string& name)
{
    bool found = false;
    bool loaded = true;
    const RealPaths realPaths(m_document, *m_includes);
    for (const SmartRef<Resource>& resource : m_document.getResourceManager()->getResourcesExcludingFolders())
    {
        if (!resource->isOfType(&TextureResource::m_typeInfo) ||
            getFilename(resource->getFilename().c_str()) != name)
            continue;
        found = true;
        loaded = loaded && reload(static_cast<TextureResource&>(*resource), path);
    }
    if (!found)
        m_say(path + ": no texture was loaded from a file of this name");
    else
        m_say(path + (loaded ? ": taken over" : ": can't be read as an image"));
    return found && loaded;
}

} // namespace helvantine::tool
