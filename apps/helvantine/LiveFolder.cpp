// SPDX-License-Identifier: MIT
#include "LiveFolder.h"

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

/// The document's own files stand aside while it lives, so that a path means the file on disk.
class RealPaths
{
public:
    explicit RealPaths(Document& document) : m_document(document) { m_document.enableVfs(false); }
    ~RealPaths() { m_document.enableVfs(true); }
    RealPaths(const RealPaths&) = delete;
    RealPaths& operator=(const RealPaths&) = delete;

private:
    Document& m_document;
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
    : m_document(document), m_say(std::move(say)), m_shaders(document, m_say)
{
}

std::string LiveFolder::open(const std::string& folder)
{
    std::error_code error;
    m_folder = std::filesystem::absolute(folder, error);
    return m_watch.open(folder);
}

bool LiveFolder::update(double now)
{
    bool changed = false;
    while (m_watch.take(now, m_name))
        changed |= bring(m_name);
    return m_shaders.update() || changed;
}

bool LiveFolder::bring(const std::string& name)
{
    const std::filesystem::path file(name);
    const std::string extension = file.extension().string();
    const std::string path = (m_folder / file).string();
    if (extension == shaderExtension)
        offerShader(path, file.stem().string());
    else if (std::find(imageExtensions.begin(), imageExtensions.end(), extension) != imageExtensions.end())
        return replaceTextures(path, name);
    return false;
}

void LiveFolder::offerShader(const std::string& path, const std::string& name)
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
    m_shaders.offer(name, path, text);
}

bool LiveFolder::replaceTextures(const std::string& path, const std::string& name)
{
    bool found = false;
    bool loaded = true;
    const RealPaths realPaths(m_document);
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
