// SPDX-License-Identifier: MIT
#include <helvantine/core/ZipVirtualFileSystem.h>

#include "zip/ZipArchive.h"

#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/Report.h>

#include <algorithm>

namespace helvantine
{

ZipVirtualFileSystem::ZipVirtualFileSystem() = default;

ZipVirtualFileSystem::~ZipVirtualFileSystem() = default;

bool ZipVirtualFileSystem::open(const char* path)
{
    close();
    m_archive = ZipArchive::open(path);
    return m_archive != nullptr;
}

void ZipVirtualFileSystem::close()
{
    m_archive.reset();
}

Buffer* ZipVirtualFileSystem::openFile(const char* path)
{
    if (!m_archive || !path)
        return nullptr;
    const std::string name = makeRootedName(path);
    const std::optional<std::uint64_t> index = m_archive->find(name);
    if (!index) {
        if (const std::string refusal = m_archive->getRefusal(name); !refusal.empty())
            reportProblem("zip", refusal);
        return nullptr;
    }
    constexpr std::uint64_t capacityLimit = 1 << 20; // a size is believed only as far as its bytes come
    const std::uint64_t size = m_archive->getEntry(*index).size;
    auto file = std::make_unique<MemoryBuffer>(static_cast<int>(std::min(size, capacityLimit)), 65536);
    if (!m_archive->read(*index, *file))
        return nullptr;
    file->seek(0);
    file->setName(path);
    return file.release();
}

bool ZipVirtualFileSystem::hasFile(const char* path) const
{
    return m_archive && path && m_archive->find(makeRootedName(path));
}

Buffer* ZipVirtualFileSystem::createFile(const char*)
{
    return nullptr;
}

} // namespace helvantine
