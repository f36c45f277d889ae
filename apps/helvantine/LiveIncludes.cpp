// SPDX-License-Identifier: MIT
#include "LiveIncludes.h"

#include <helvantine/core/FileUtil.h>
#include <helvantine/core/MemoryBuffer.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/WinFile.h>

#include <utility>

namespace helvantine::tool
{

namespace
{

constexpr std::uint64_t largestFile = std::uint64_t(16) << 20; ///< bytes, as the renderer takes them

} // namespace

std::string LiveIncludes::locate(const std::string& path) const
{
    const std::string name = getFilename(path.c_str());
    return m_files.contains(name) ? m_folder + name : std::string();
}

Buffer* LiveIncludes::openFile(const char* path)
{
    const std::string name = getFilename(path);
    auto found = m_files.find(name);
    if (found == m_files.end()) {
        WinFile file;
        std::vector<unsigned char> bytes;
        if (!hasFile(path) || !file.open((m_folder + name).c_str()) ||
            !readRemaining(file, bytes, largestFile))
            return nullptr;
        found = m_files.emplace(name, std::move(bytes)).first;
    }
    return new MemoryBuffer(found->second);
}

bool LiveIncludes::hasFile(const char* path) const
{
    const std::string name = getFilename(path);
    return !name.empty() && getFileStamp((m_folder + name).c_str()).exists;
}

} // namespace helvantine::tool
