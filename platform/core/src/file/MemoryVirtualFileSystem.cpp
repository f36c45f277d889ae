// SPDX-License-Identifier: MIT
#include <helvantine/core/MemoryVirtualFileSystem.h>

#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Path.h>

#include <utility>

namespace helvantine
{

bool MemoryVirtualFileSystem::add(const char* path, std::vector<unsigned char> bytes)
{
    std::string name = path ? makeRootedName(path) : std::string();
    if (name.empty())
        return false;
    m_files[std::move(name)] = std::move(bytes);
    return true;
}

void MemoryVirtualFileSystem::remove(const char* path)
{
    if (path)
        m_files.erase(makeRootedName(path));
}

Buffer* MemoryVirtualFileSystem::openFile(const char* path)
{
    const auto found = path ? m_files.find(makeRootedName(path)) : m_files.end();
    if (found == m_files.end())
        return nullptr;
    auto* file = new MemoryBuffer(found->second);
    file->setName(path);
    return file;
}

Buffer* MemoryVirtualFileSystem::createFile(const char*)
{
    return nullptr;
}

bool MemoryVirtualFileSystem::hasFile(const char* path) const
{
    return path && m_files.contains(makeRootedName(path));
}

} // namespace helvantine
