// SPDX-License-Identifier: MIT
// New resources in the tree.
#include <helvantine/resource/ResourceManager.h>

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/WinFile.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/TextureResource.h>
#include <helvantine/resource/TextureResourceImporter.h>

#include <memory>

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
