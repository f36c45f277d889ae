// SPDX-License-Identifier: MIT
#include <helvantine/core/FileSystem.h>

#include <helvantine/core/Buffer.h>
#include <helvantine/core/WinFile.h>

#include <algorithm>
#include <memory>

namespace helvantine
{

FileSystem* g_fileSystem = nullptr;

FileSystem* createFileSystem()
{
    g_fileSystem = new FileSystem;
    return g_fileSystem;
}

Buffer* openFile(const char* path)
{
    if (g_fileSystem)
        return g_fileSystem->openFile(path);
    auto file = std::make_unique<WinFile>();
    return file->open(path) ? file.release() : nullptr;
}

FileSystem::FileSystem() = default;

FileSystem::~FileSystem()
{
    if (g_fileSystem == this)
        g_fileSystem = nullptr;
}

void FileSystem::addVfs(VirtualFileSystem* vfs)
{
    if (vfs)
        m_systems.emplace_back(vfs);
}

void FileSystem::addVfsAtTop(VirtualFileSystem* vfs)
{
    if (vfs)
        m_systems.emplace(m_systems.begin(), vfs);
}

void FileSystem::removeVfs(VirtualFileSystem* vfs)
{
    const auto found =
        std::ranges::find_if(m_systems, [&](const auto& system) { return system.get() == vfs; });
    if (found != m_systems.end())
        m_systems.erase(found);
}

Buffer* FileSystem::openFile(const char* path)
{
    for (const auto& system : m_systems) {
        Buffer* file = system->isEnabled() ? system->openFile(path) : nullptr;
        if (file)
            return file;
    }
    return nullptr;
}

Buffer* FileSystem::openFileInside(const char* path)
{
    for (const auto& system : m_systems) {
        Buffer* file = system->isEnabled() && system->hasRoot() ? system->openFile(path) : nullptr;
        if (file)
            return file;
    }
    return nullptr;
}

bool FileSystem::hasFile(const char* path) const
{
    return std::ranges::any_of(
        m_systems, [&](const auto& system) { return system->isEnabled() && system->hasFile(path); });
}

Buffer* FileSystem::createFile(const char* path)
{
    const auto last = std::find_if(m_systems.rbegin(), m_systems.rend(), [](const auto& system) {
        return system->isEnabled() && system->isWritable();
    });
    return last != m_systems.rend() ? (*last)->createFile(path) : nullptr;
}

} // namespace helvantine
