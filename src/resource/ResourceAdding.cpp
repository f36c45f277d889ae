// SPDX-License-Identifier: MIT
// New resources in the tree.
#include <helvantine/resource/ResourceManager.h>

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/FileUtil.h>
#include <helvantine/core/MemoryVirtualFileSystem.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/WinVirtualFileSystem.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>

#include <memory>
#include <utility>

namespace helvantine
{

namespace
{

/// What needs a renderer can't be made without one, but its recipe can be kept.
SmartRef<Resource> makeWithoutPayload(ResourceImporter& importer, const char* filename)
{
    if (g_renderer)
        return nullptr;
    if (importer.usesFile()) {
        if (!filename || !g_fileSystem || !std::unique_ptr<Buffer>(g_fileSystem->openFile(filename)))
            return nullptr;
    }
    SmartRef<Resource> resource(importer.createResource());
    if (!resource)
        return nullptr;
    resource->setImporter(&importer);
    resource->setName(resource->getFilename().c_str());
    return resource;
}

/// An uncompressed file of four channels; empty if the pixels are no picture of 8-bit channels.
std::vector<unsigned char> makeTga(const TexturePixels& pixels)
{
    constexpr unsigned longestSide = 16384;
    const bool isRedFirst = pixels.format == DXGI_FORMAT_R8G8B8A8_UNORM;
    const std::size_t rowSize = std::size_t{4} * pixels.width;
    const std::size_t pitch = pixels.rowPitch ? pixels.rowPitch : rowSize;
    if ((!isRedFirst && pixels.format != DXGI_FORMAT_B8G8R8A8_UNORM) || !pixels.data || pixels.width == 0 ||
        pixels.height == 0 || pixels.width > longestSide || pixels.height > longestSide || pitch < rowSize ||
        pixels.size < rowSize || (pixels.size - rowSize) / pitch < pixels.height - 1)
        return {};
    const auto low = [](unsigned number) { return static_cast<unsigned char>(number & 0xFF); };
    std::vector<unsigned char> file = {0,
                                       0,
                                       2,
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       low(pixels.width),
                                       low(pixels.width >> 8),
                                       low(pixels.height),
                                       low(pixels.height >> 8),
                                       32,    // bits a pixel
                                       0x28}; // 8 of alpha, rows from the top
    for (unsigned y = 0; y < pixels.height; ++y) {
        const unsigned char* row = static_cast<const unsigned char*>(pixels.data) + y * pitch;
        const std::size_t begin = file.size();
        file.insert(file.end(), row, row + rowSize);
        for (std::size_t i = begin; isRedFirst && i < file.size(); i += 4)
            std::swap(file[i], file[i + 2]);
    }
    return file;
}

} // namespace

Resource* ResourceManager::addImported(const SmartRef<ResourceImporter>& importer, const char* filename,
                                       Resource* folder)
{
    if (!importer) {
        reportProblem("resource", "nothing is imported: the importer is null");
        return nullptr;
    }
    const ImportResult result = importer->import(filename, nullptr);
    const SmartRef<Resource> resource =
        result.resource ? result.resource : makeWithoutPayload(*importer, filename);
    if (!resource) {
        const std::string what = filename ? filename : importer->getTypeInfo()->name;
        reportProblem("resource",
                      what + ": " + (result.message.empty() ? "can't be imported" : result.message));
        return nullptr;
    }
    (folder ? folder : m_root.get())->addResource(resource.get());
    return resource.get();
}

TextureResource* ResourceManager::addTexture(const char* filename, Resource* folder)
{
    return castTo<TextureResource>(addImported(new TextureResourceImporter, filename, folder));
}

TextureResource* ResourceManager::addTexture(const char* filename, const void* bytes, std::size_t size,
                                             Resource* folder)
{
    if (!addFile(filename, bytes, size))
        return nullptr;
    TextureResource* texture = addTexture(filename, folder);
    if (!texture)
        removeFile(filename);
    return texture;
}

TextureResource* ResourceManager::addTexture(const char* filename, const TexturePixels& pixels,
                                             Resource* folder)
{
    const std::vector<unsigned char> file = makeTga(pixels);
    if (file.empty()) {
        reportProblem("resource", std::string(filename ? filename : "null") + ": pixels of format " +
                                      std::to_string(pixels.format) + ", " + std::to_string(pixels.width) +
                                      " by " + std::to_string(pixels.height) + ", in " +
                                      std::to_string(pixels.size) + " bytes make no picture");
        return nullptr;
    }
    return addTexture(filename, file.data(), file.size(), folder);
}

bool ResourceManager::addFile(const char* filename, const void* bytes, std::size_t size)
{
    const std::string name = filename ? makeRootedName(filename) : std::string();
    const char* whyNot = nullptr;
    if (name.empty())
        whyNot = "it has no name";
    else if (!bytes)
        whyNot = "it has no bytes";
    else if (!g_fileSystem)
        whyNot = "there is no document";
    else if (std::unique_ptr<Buffer>(g_fileSystem->openFileInside(filename)))
        whyNot = "the document has one of that name";
    else if (!writeFile(filename, bytes, size))
        whyNot = "it can't be written";
    if (whyNot)
        reportProblem("resource", "no file '" + name + "' is made: " + whyNot);
    return !whyNot;
}

bool ResourceManager::writeFile(const char* filename, const void* bytes, std::size_t size)
{
    if (!m_cacheFolder.empty()) {
        const SmartRef<WinVirtualFileSystem> cache(new WinVirtualFileSystem(m_cacheFolder.c_str()));
        const std::unique_ptr<Buffer> file(cache->createFile(filename));
        return file && file->write(bytes, size) == size && file->flush();
    }
    if (!m_memoryFiles) {
        m_memoryFiles = new MemoryVirtualFileSystem;
        g_fileSystem->addVfsAtTop(m_memoryFiles.get());
    }
    const auto* first = static_cast<const unsigned char*>(bytes);
    return m_memoryFiles->add(filename, {first, first + size});
}

void ResourceManager::removeFile(const char* filename)
{
    if (m_memoryFiles)
        m_memoryFiles->remove(filename);
    else
        deleteFile(resolveInside(m_cacheFolder, filename).c_str());
}

RenderTargetResource* ResourceManager::addRenderTarget(const char* name, int width, int height,
                                                       RenderTargetResource::Format format, Resource* folder)
{
    const SmartRef<ResourceImporter> importer(new RenderTargetResourceImporter);
    importer->setProperty("Width", width);
    importer->setProperty("Height", height);
    importer->setProperty("Format", format);
    auto* target = castTo<RenderTargetResource>(addImported(importer, nullptr, folder));
    if (!target)
        return nullptr;
    target->setName(name);
    (folder ? folder : m_root.get())->sort();
    return target;
}

Resource* ResourceManager::addFolder(const char* name, Resource* folder)
{
    const SmartRef<Resource> made(new Resource);
    made->setIsFolder(true);
    made->setName(name);
    (folder ? folder : m_root.get())->addResource(made.get());
    return made.get();
}

} // namespace helvantine
