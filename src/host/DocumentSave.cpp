// SPDX-License-Identifier: MIT
#include "host/DocumentSave.h"

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/WinFile.h>
#include <helvantine/core/WinVirtualFileSystem.h>
#include <helvantine/core/ZipVirtualFileSystem.h>
#include <helvantine/core/ZipWrite.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/Resource.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/serialize/FxSerializer.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>

namespace helvantine
{

namespace
{

constexpr const char* s_scriptName = "Helvantine.Script";

/// Everything lies on the disk twice for a moment, as it is and packed; pictures hardly get smaller.
constexpr std::uint64_t s_copies = 2;

/// The files that the resources need, each once.
std::set<std::string> getResourceFiles(const Document& document)
{
    std::set<std::string> files;
    for (const SmartRef<Resource>& resource : document.getResourceManager()->getResourcesExcludingFolders()) {
        for (const std::string& file : resource->getFiles()) {
            if (!file.empty())
                files.insert(file);
        }
    }
    return files;
}

/// Whether the cache folder has lost a resource file, which may then be found in the archive alone.
bool hasLostFiles(const Document& document)
{
    for (const std::string& file : getResourceFiles(document)) {
        if (!document.getCacheVfs()->hasFile(file.c_str()))
            return true;
    }
    return false;
}

/// Bytes; the largest number where that can't be told.
std::uint64_t getRoom(const std::string& folder)
{
    std::error_code error;
    return std::filesystem::space(folder, error).available;
}

/// What came first: the rest follows from it. What resources say of themselves keeps no document from being saved.
std::string findReason(const std::vector<Problem>& problems)
{
    const auto first =
        std::ranges::find_if(problems, [](const Problem& p) { return p.module != "resource"; });
    return first != problems.end() ? first->text : "it can't be written";
}

std::string describeSize(std::uint64_t bytes)
{
    constexpr double mebibyte = 1 << 20;
    return bytes < (1 << 20) ? formatString("%llu bytes", static_cast<unsigned long long>(bytes))
                             : formatString("%.1f MiB", static_cast<double>(bytes) / mebibyte);
}

} // namespace

DocumentSave::DocumentSave(Document& document, const char* path) : m_document(document)
{
    m_outcome.file = path;
}

SaveOutcome DocumentSave::run()
{
    const std::string folder = getPath(m_outcome.file.c_str());
    const std::uint64_t room = getRoom(folder);
    {
        ProblemCapture capture;
        m_outcome.saved = writeArchive();
        if (!m_outcome.saved) {
            m_outcome.reason = findReason(capture.take());
            const std::uint64_t needed = s_copies * (measureFiles() + m_scriptSize);
            m_outcome.missingBytes = needed > room ? needed - room : 0;
            capture.take(); // of files that can't be measured
        }
    }
    explain();
    return m_outcome;
}

/// Says what came of it.
void DocumentSave::explain()
{
    std::string words = m_outcome.file + ": ";
    if (!m_outcome.saved) {
        words += "isn't saved: " + m_outcome.reason;
        if (m_outcome.missingBytes > 0)
            words += "; about " + describeSize(m_outcome.missingBytes) + " of room are missing";
        reportProblem("document", words);
        return;
    }
    for (const std::string& file : m_outcome.missingFiles)
        reportProblem("document", words + "saved without '" + file + "', which isn't there");
}

bool DocumentSave::writeArchive()
{
    ZipVirtualFileSystem* documentVfs = m_document.getZipVfs();
    // The archive stays open where it is the only place of resource files.
    if (documentVfs && m_document.getCacheVfs() && !hasLostFiles(m_document))
        documentVfs->close();

    void* archive = ZipWrite::open(m_outcome.file.c_str(), true);
    SmartRef<WinVirtualFileSystem> cacheVfs;
    if (m_document.getCacheVfs()) {
        cacheVfs = new WinVirtualFileSystem(m_document.getCacheFolder().c_str());
        g_fileSystem->addVfsAtTop(cacheVfs.get());
    }
    WinFile script;
    if (!createScript(script, archive)) {
        // The cache folder stays on the stack and the document's archive stays closed: both deliberate.
        ZipWrite::discard(archive);
        return false;
    }
    const bool isWritten = writeEntries(script, archive) && ZipWrite::isComplete(archive);
    const bool isSaved = isWritten && ZipWrite::close(archive);
    if (!isWritten)
        ZipWrite::discard(archive);
    g_fileSystem->removeVfs(cacheVfs.get());
    if (documentVfs)
        documentVfs->open(m_document.getDocumentPath().c_str());
    return isSaved;
}

/// In the cache folder, where it stays, or else for the time of the save.
bool DocumentSave::createScript(WinFile& script, void* archive)
{
    if (!m_document.getCacheVfs()) {
        const std::string path = ZipWrite::getScratchPath(archive, s_scriptName);
        return !path.empty() && script.create(path.c_str());
    }
    const std::string folder = withSeparator(m_document.getCacheFolder());
    return makeFolders(folder.c_str()) && script.create((folder + s_scriptName).c_str());
}

/// Writes the script into its file, and both it and the resource files into the archive.
bool DocumentSave::writeEntries(WinFile& script, void* archive)
{
    FxSerializer serializer(m_outcome.file.c_str(), &script, true, archive);
    m_document.serialize(serializer);
    m_outcome.missingFiles = serializer.m_missingFiles;
    m_scriptSize = script.getSize();
    if (serializer.m_out.failed() || !script.flush()) {
        reportProblem("document", std::string("the script can't be written to ") + script.getName());
        return false;
    }
    script.seek(0);
    return ZipWrite::add(archive, s_scriptName, &script);
}

/// Bytes of all files that the archive takes.
std::uint64_t DocumentSave::measureFiles() const
{
    std::uint64_t bytes = 0;
    for (const std::string& file : getResourceFiles(m_document)) {
        if (const std::unique_ptr<Buffer> opened{openFile(file.c_str())})
            bytes += opened->getSize();
    }
    return bytes;
}

} // namespace helvantine
