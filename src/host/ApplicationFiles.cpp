// SPDX-License-Identifier: MIT
// Loading and saving: the document's script, and the archive that carries it.
#include "host/DocumentSave.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/InStream.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/ZipVirtualFileSystem.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/serialize/FxSerializer.h>

#include <filesystem>

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
        std::error_code error;
        const bool isThere = !documentPath || std::filesystem::exists(path, error);
        const std::string found = isThere ? std::string("no ") + scriptName : "no such file";
        reportProblem("document", path + (isThere ? ": holds " : ": ") + found);
        m_document->addLoadProblem(
            {path, "document", "", 0, found, "an archive or a cache folder that holds it", true});
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
    if (documentPath && m_document)
        m_document->setSaveOutcome(DocumentSave(*m_document, documentPath).run());
}

} // namespace helvantine
