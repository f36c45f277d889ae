// SPDX-License-Identifier: MIT
// Loading and saving: the document's script, and the archive that carries it.
#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/InStream.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/WinFile.h>
#include <helvantine/core/WinVirtualFileSystem.h>
#include <helvantine/core/ZipVirtualFileSystem.h>
#include <helvantine/core/ZipWrite.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/serialize/FxSerializer.h>

namespace helvantine
{

namespace
{

constexpr const char* scriptName = "Helvantine.Script";

/// The script of a document that was opened from that path; null if there is none. What the cache folder
/// still holds of another document doesn't stand in for an archive without a script.
Buffer* openScript(Document& document, const char* documentPath)
{
    if (!documentPath)
        return g_fileSystem->openFile(scriptName);
    ZipVirtualFileSystem* archive = document.getZipVfs();
    return archive ? archive->openFile(scriptName) : nullptr;
}

/// The number of objects that the script's last four bytes promise, for the progress of loading. It is read
/// before the script's version is known: a version without that trailer yields whatever stands there, which
/// is deliberate, since nothing but the progress depends on it.
uint32_t peekObjectCount(Buffer& script)
{
    uint32_t count = 1;
    const uint64_t size = script.getSize();
    if (g_formatVersion >= 7 && size >= sizeof(count)) {
        script.seek(size - sizeof(count));
        InStream stream(false);
        stream.attach(&script);
        stream.readUInt(count);
        script.seek(0);
    }
    return count;
}

/// Writes the script into file and both it and the resource files into the archive. False leaves the archive
/// incomplete: it must not replace an earlier one.
bool writeDocument(Document& document, const char* documentPath, WinFile& file, void* archive)
{
    FxSerializer serializer(documentPath, &file, true, archive);
    document.serialize(serializer);
    if (serializer.m_out.failed() || !file.flush()) {
        reportProblem("document",
                      std::string(documentPath) + ": script can't be written to " + file.getName());
        return false;
    }
    file.seek(0);
    return ZipWrite::add(archive, scriptName, &file);
}

/// Whether the cache folder has lost a resource file, which may then be found in the archive alone.
bool hasLostFiles(const Document& document)
{
    const WinVirtualFileSystem& cache = *document.getCacheVfs();
    for (const SmartRef<Resource>& resource : document.getResourceManager()->getResourcesExcludingFolders()) {
        for (const std::string& name : resource->getFiles()) {
            if (!name.empty() && !cache.hasFile(name.c_str()))
                return true;
        }
    }
    return false;
}

} // namespace

void Application::loadDocument(const char* documentPath, const char* cacheFolder,
                               FxSerializerListener* listener)
{
    // The old document goes first, so that its resources aren't alive beside the new ones.
    m_document.reset();
    m_document = std::make_unique<Document>(cacheFolder, documentPath);

    const std::string path = documentPath ? documentPath : "";
    const std::unique_ptr<Buffer> script(openScript(*m_document, documentPath));
    if (!script) {
        reportProblem("document", path + ": holds no " + scriptName);
        m_document->addLoadProblem({path, "document", "", 0, std::string("no ") + scriptName,
                                    "an archive or a cache folder that holds it", true});
        return;
    }
    const uint32_t objectCount = peekObjectCount(*script);
    FxSerializer serializer(path.c_str(), script.get(), false, nullptr);
    serializer.setListener(listener);
    serializer.setObjectTotalCount(objectCount);
    m_document->serialize(serializer);
}

void Application::saveDocument(const char* documentPath)
{
    if (!documentPath || !m_document)
        return;
    Document& document = *m_document;
    ZipVirtualFileSystem* documentVfs = document.getZipVfs();
    // The archive stays open where it is the only place of resource files.
    if (documentVfs && document.getCacheVfs() && !hasLostFiles(document))
        documentVfs->close();

    // The file that is there stays until the new one is complete: the archive is written beside it.
    void* archive = ZipWrite::open(documentPath, true);
    const std::string& cacheFolder = document.getCacheFolder();
    const SmartRef<WinVirtualFileSystem> cacheVfs(
        new WinVirtualFileSystem(cacheFolder.empty() ? "." : cacheFolder.c_str()));
    g_fileSystem->addVfsAtTop(cacheVfs.get());

    WinFile script;
    if (!script.create((cacheFolder + scriptName).c_str())) {
        // The cache folder stays on the stack and the document's archive stays closed: both deliberate.
        ZipWrite::discard(archive);
        return;
    }
    if (writeDocument(document, documentPath, script, archive))
        ZipWrite::close(archive);
    else
        ZipWrite::discard(archive);
    g_fileSystem->removeVfs(cacheVfs.get());
    if (documentVfs)
        documentVfs->open(document.getDocumentPath().c_str());
}

} // namespace helvantine
