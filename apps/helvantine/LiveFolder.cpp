// SPDX-License-Identifier: MIT
#include "LiveFolder.h"

#include "FileExtension.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Text.h>
#include <helvantine/host/Document.h>

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

} // namespace

LiveFolder::LiveFolder(Document& document, Say say, Rehearsal* rehearsal)
    : m_document(document), m_say(std::move(say)), m_includes(new LiveIncludes),
      m_shaders(document, *m_includes, m_say, rehearsal), m_pictures(document, *m_includes, m_say)
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

bool LiveFolder::update(double now, int frame)
{
    std::set<std::string> texts;
    while (m_watch.take(now, m_name)) {
        if (isImage(m_name))
            m_pictures.offer(m_name, (m_folder / m_name).string());
        else
            texts.insert(m_name);
    }
    if (!texts.empty())
        bringTexts(texts);
    const bool changed = m_pictures.update();
    return m_shaders.update(frame) || changed;
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

} // namespace helvantine::tool
