// SPDX-License-Identifier: MIT
#include "image/ImageFile.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanTexture.h"

#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/SmartRef.h>

#include <chrono>
#include <future>
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

/// Null if there is none of that version.
Texture* findCached(const char* path, const FileVersion& version)
{
    const auto found = getCache().find(makeValidFilename(path));
    return found != getCache().end() && found->second->isCurrent(version) ? found->second : nullptr;
}

/// For a texture that was made of the file. Null for null, with `path: reason` in error unless one is there.
Texture* addToCache(Texture* texture, const std::string& path, const FileVersion& version, std::string& error)
{
    if (texture)
        return new CachedTexture(static_cast<VulkanTexture*>(texture), makeValidFilename(path.c_str()),
                                 version);
    if (error.empty())
        error = path + ": the device didn't take it";
    return nullptr;
}

/// Goes row by row from the file to the device.
Texture* streamTexture(ImageFile& file, const char* path, std::string& error)
{
    const ImageDecoder* decoder = file.openImage(error);
    if (!decoder)
        return nullptr;
    const ImageHeader header = decoder->getHeader();
    return createTextureFromRows(header, makeValidFilename(path).c_str(),
                                 [&](ImageSink& sink) { return file.decode(&sink, error); });
}

Texture* loadTexture(const char* path)
{
    ImageFile file;
    std::string error;
    if (!file.open(path, error)) {
        reportProblem("texture", error);
        return nullptr;
    }
    if (Texture* cached = findCached(path, file.getVersion()))
        return cached;
    Texture* texture = addToCache(streamTexture(file, path, error), path, file.getVersion(), error);
    if (!texture)
        reportProblem("texture", error);
    return texture;
}

class BackgroundLoading final : public TextureLoading
{
public:
    explicit BackgroundLoading(const char* path) : m_path(path)
    {
        if (!m_file.open(path, m_error))
            return;
        m_texture = findCached(path, m_file.getVersion());
        if (!m_texture) // deferred where no thread can be had
            m_image = std::async(std::launch::async | std::launch::deferred,
                                 [this] { return m_file.decode(m_error); });
    }

    bool isDone() override
    {
        if (!m_image.valid())
            return true;
        if (m_image.wait_for(std::chrono::seconds(0)) == std::future_status::timeout)
            return false;
        if (const std::optional<ImageData> image = m_image.get())
            m_texture = addToCache(createTextureFromImage(*image, m_path.c_str()), m_path,
                                   m_file.getVersion(), m_error);
        return true;
    }

    const std::string& getErrorText() const override { return m_error; }

private:
    std::string m_path;
    ImageFile m_file;
    std::string m_error; ///< the decoder's until it is done
    SmartRef<Texture> m_texture;
    std::future<std::optional<ImageData>> m_image; ///< last, since its end waits for who uses the others
};

} // namespace

Texture* loadTextureFromCache(const char* path)
{
    return path && VulkanContext::getCurrent() ? loadTexture(path) : nullptr;
}

std::unique_ptr<TextureLoading> beginTextureLoading(const char* path)
{
    return std::make_unique<BackgroundLoading>(path);
}

bool checkTextureFile(const char* path, std::string& error)
{
    ImageFile file;
    return file.open(path, error) && file.decode(nullptr, error);
}

} // namespace helvantine
