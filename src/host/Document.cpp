// SPDX-License-Identifier: MIT
#include <helvantine/host/Document.h>

#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/Text.h>
#include <helvantine/core/ZipRead.h>
#include <helvantine/core/ZipVirtualFileSystem.h>
#include <helvantine/editor/EditorObjectStore.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/serialize/FxSerializer.h>

namespace helvantine
{

namespace
{

/// refusal: on failure the first entry that isn't unpacked, and why.
bool extractArchive(const char* documentPath, const char* folder, std::string& refusal)
{
    ProblemCapture capture;
    void* archive = ZipRead::open(documentPath);
    const bool extracted = ZipRead::extractFiles(archive, folder);
    ZipRead::close(archive);
    for (const Problem& problem : capture.take()) {
        refusal = refusal.empty() ? problem.text : refusal;
        reportProblem(problem.module.c_str(), problem.text);
    }
    return extracted;
}

} // namespace

Document::Document(const char* cacheFolder, const char* documentPath) : m_version(g_formatVersion)
{
    if (cacheFolder)
        m_cacheFolder = cacheFolder;
    m_compositionManager = std::make_unique<CompositionManager>();
    m_objectStore = std::make_unique<EditorObjectStore>();
    m_projectSettings = std::make_unique<ProjectSettings>();
    m_resourceManager = std::make_unique<ResourceManager>(cacheFolder);
    m_fileSystem.reset(createFileSystem());

    if (documentPath)
        openArchive(documentPath);
    if (!m_cacheFolder.empty()) {
        m_cacheVfs = new WinVirtualFileSystem(cacheFolder);
        m_fileSystem->addVfs(m_cacheVfs.get());
    }
    m_fileSystem->addVfs(new WinVirtualFileSystem(nullptr));
}

void Document::openArchive(const char* documentPath)
{
    std::string refusal;
    const bool extracted =
        m_cacheFolder.empty() || extractArchive(documentPath, m_cacheFolder.c_str(), refusal);
    const SmartRef<ZipVirtualFileSystem> archive(new ZipVirtualFileSystem);
    if (archive->open(documentPath)) {
        m_zipVfs = archive.get();
        m_documentPath = documentPath;
        m_fileSystem->addVfs(m_zipVfs);
        if (!extracted)
            addLoadProblem(
                {documentPath, "document", "", 0, refusal, "whole files that stay in their folder", false});
    } else {
        addLoadProblem(
            {documentPath, "document", "", 0, "no archive", "a regular file with a zip archive", true});
    }
}

Document::~Document()
{
    // Effects and resources close their files and let go of what they hold while the stack still stands.
    m_cacheVfs = nullptr;
    m_compositionManager.reset();
    m_resourceManager.reset();
    m_zipVfs = nullptr;
    m_fileSystem.reset();
    m_projectSettings.reset();
    m_objectStore.reset();
}

void Document::addLoadProblem(const LoadProblem& problem)
{
    m_loadProblems.push_back(problem);
}

void Document::enableVfs(bool enable)
{
    if (m_cacheVfs)
        m_cacheVfs->setEnabled(enable);
    if (m_zipVfs)
        m_zipVfs->setEnabled(enable);
}

void Document::serialize(FxSerializer& serializer)
{
    const bool writing = serializer.m_writing;
    if (writing) {
        m_version = g_formatVersion;
        serializer.m_out.writeUInt(m_version);
    } else {
        serializer.m_in.readUInt(m_version);
    }
    serializer.setVersion(static_cast<int>(m_version));
    if (!writing && m_version > g_formatVersion)
        serializer.fail(formatString("format version %u, up to %u can be read", m_version, g_formatVersion),
                        "version of this library or an earlier one");
    if (!serializer.failed())
        serializeRecords(serializer);
    m_loadProblems.insert(m_loadProblems.end(), serializer.getProblems().begin(),
                          serializer.getProblems().end());
}

void Document::serializeRecords(FxSerializer& serializer)
{
    m_projectSettings->serialize(serializer);
    m_resourceManager->serialize(serializer);
    m_compositionManager->serialize(serializer);

    if (serializer.m_writing) {
        serializer.m_out.writeUInt(serializer.m_objectCount);
    } else if (m_version >= 7) {
        // The total that a host peeks at for its progress bar before reading begins.
        uint32_t objectCount = 0;
        serializer.m_in.readUInt(objectCount);
        serializer.failed(); // a trailer that is cut off is worth a word
    }
}

} // namespace helvantine
