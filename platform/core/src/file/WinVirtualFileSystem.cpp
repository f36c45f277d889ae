// SPDX-License-Identifier: MIT
#include <helvantine/core/WinVirtualFileSystem.h>

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/WinFile.h>

#include <memory>

namespace helvantine
{

WinVirtualFileSystem::WinVirtualFileSystem(const char* root)
    : m_root(root ? root : ""), m_rooted(root != nullptr)
{
    if (m_rooted && m_root.empty())
        m_root = ".";
}

std::string WinVirtualFileSystem::resolve(const char* path) const
{
    if (!path)
        return {};
    return m_rooted ? resolveInside(m_root, path) : path;
}

Buffer* WinVirtualFileSystem::openFile(const char* path)
{
    const std::string resolved = resolve(path);
    auto file = std::make_unique<WinFile>();
    if (resolved.empty() || !file->open(resolved.c_str()))
        return nullptr;
    file->setName(path);
    return file.release();
}

bool WinVirtualFileSystem::hasFile(const char* path) const
{
    const std::string resolved = resolve(path);
    return !resolved.empty() && getFileStamp(resolved.c_str()).exists;
}

Buffer* WinVirtualFileSystem::createFile(const char* path)
{
    const std::string resolved = resolve(path);
    if (resolved.empty() || (m_rooted && !makeFolders(getPath(resolved.c_str()).c_str())))
        return nullptr;
    auto file = std::make_unique<WinFile>();
    if (!file->create(resolved.c_str()))
        return nullptr;
    file->setName(path);
    return file.release();
}

} // namespace helvantine
