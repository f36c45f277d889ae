// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/WinVirtualFileSystem.h>
#include <helvantine/host/SaveOutcome.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace helvantine
{

class CompositionManager;
class EditorObjectStore;
class FileSystem;
class FxSerializer;
struct LoadProblem;
class ProjectSettings;
class ResourceManager;
class ZipVirtualFileSystem;

/// A project in memory: settings, resources, compositions, the editor's objects, and the stack of file
/// systems through which its files are read.
///
/// On disk it is a zip archive of "Helvantine.Script" and one entry for each resource file. The stack holds,
/// first to last, the archive, the cache folder and plain paths, as far as there are such.
class HELVANTINE_FX_API Document
{
public:
    /// cacheFolder: working folder, with or without a separator at its end, made when something is put there; null or
    /// empty for none. documentPath: archive to read files from, null for none. With both the archive is unpacked into
    /// the folder. An archive that can't be opened is left out of the stack.
    Document(const char* cacheFolder, const char* documentPath);
    virtual ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    /// Switches archive and cache folder; plain paths stay on. False lets a host see real paths only.
    void enableVfs(bool enable);

    /// Writes or reads the whole project. Reading stops where the stream fails, and what was read stays.
    void serialize(FxSerializer& serializer);

    /// What was wrong with the file that this document was read from; empty if nothing was.
    const std::vector<LoadProblem>& getLoadProblems() const { return m_loadProblems; }
    void addLoadProblem(const LoadProblem& problem);

    /// How the latest save went.
    const SaveOutcome& getSaveOutcome() const { return m_saveOutcome; }
    void setSaveOutcome(const SaveOutcome& outcome) { m_saveOutcome = outcome; }

    /// The format version of the file that was read; a save makes it the current one.
    uint32_t getVersion() const { return m_version; }
    const std::string& getCacheFolder() const { return m_cacheFolder; }
    CompositionManager* getCompositionManager() const { return m_compositionManager.get(); }
    EditorObjectStore* getObjectStore() const { return m_objectStore.get(); }
    ProjectSettings* getProjectSettings() const { return m_projectSettings.get(); }
    ResourceManager* getResourceManager() const { return m_resourceManager.get(); }
    FileSystem* getFileSystem() const { return m_fileSystem.get(); }
    WinVirtualFileSystem* getCacheVfs() const { return m_cacheVfs.get(); } ///< null without a cache folder
    ZipVirtualFileSystem* getZipVfs() const { return m_zipVfs; }           ///< null without an archive
    /// The archive that getZipVfs reads; a save under another name doesn't change it.
    const std::string& getDocumentPath() const { return m_documentPath; }

private:
    void openArchive(const char* documentPath);
    void serializeRecords(FxSerializer& serializer);

    uint32_t m_version;
    std::string m_cacheFolder;
    std::unique_ptr<CompositionManager> m_compositionManager;
    std::unique_ptr<EditorObjectStore> m_objectStore;
    std::unique_ptr<ProjectSettings> m_projectSettings;
    std::unique_ptr<ResourceManager> m_resourceManager;
    std::unique_ptr<FileSystem> m_fileSystem;
    SmartRef<WinVirtualFileSystem> m_cacheVfs;
    ZipVirtualFileSystem* m_zipVfs = nullptr; ///< owned by the stack
    std::string m_documentPath;
    std::vector<LoadProblem> m_loadProblems;
    SaveOutcome m_saveOutcome;
};

} // namespace helvantine
