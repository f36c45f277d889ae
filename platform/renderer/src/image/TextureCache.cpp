// SPDX-License-Identifier: MIT
#include "image/ImageFile.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanTexture.h"

#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/SmartRef.h>

#include <map>

namespace helvantine
{

namespace
{

class CachedTexture;

/// The textures that somebody uses, by path. It counts no references: a texture leaves when it dies.
/// Never destroyed, since textures may be released while the process ends.
std::map<std::string, CachedTexture*>& getCache()
{
    static auto& cache = *new std::map<std::string, CachedTexture*>;
    return cache;
}

/// A texture that knows the file it came from.
class CachedTexture final : public Texture
{
public:
    CachedTexture(VulkanTexture* texture, const std::string& path, const FileVersion& version)
        : m_texture(texture), m_path(path), m_version(version)
    {
        getCache()[m_path] = this;
    }

    ~CachedTexture() override
    {
        // A newer version of the file may have taken the place.
        const auto found = getCache().find(m_path);
        if (found != getCache().end() && found->second == this)
            getCache().erase(found);
    }

    void bind(unsigned slot) override { m_texture->bind(slot); }
    void unbind(unsigned slot) override { m_texture->unbind(slot); }
    unsigned getWidth() const override { return m_texture->getWidth(); }
    unsigned getHeight() const override { return m_texture->getHeight(); }

    /// False once the file or the renderer is another.
    bool isCurrent(const FileVersion& version) const
    {
        return m_version == version && m_texture->getContext() == VulkanContext::getCurrent();
    }

private:
    SmartRef<VulkanTexture> m_texture;
    std::string m_path;
    FileVersion m_version;
};

Texture* loadTexture(const char* path)
{
    ImageFile file;
    std::string error;
    if (!file.open(path, error)) {
        reportProblem("texture", error);
        return nullptr;
    }
    const std::string key = makeValidFilename(path);
    const auto found = getCache().find(key);
    if (found != getCache().end() && found->second->isCurrent(file.getVersion()))
        return found->second;

    const std::optional<ImageData> image = file.decode(error);
    if (!image) {
        reportProblem("texture", error);
        return nullptr;
    }
    auto* texture = static_cast<VulkanTexture*>(createTextureFromImage(*image, key.c_str()));
    if (!texture) {
        reportProblem("texture", std::string(path) + ": the device didn't take it");
        return nullptr;
    }
    return new CachedTexture(texture, key, file.getVersion());
}

} // namespace

Texture* loadTextureFromCache(const char* path)
{
    return path && VulkanContext::getCurrent() ? loadTexture(path) : nullptr;
}

bool checkTextureFile(const char* path, std::string& error)
{
    ImageFile file;
    return file.open(path, error) && file.decode(error);
}

} // namespace helvantine
