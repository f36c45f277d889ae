// SPDX-License-Identifier: MIT
#include "ScratchFolder.h"

#include <helvantine/core/System.h>
#include <helvantine/core/UniqueId.h>

#include <filesystem>

namespace helvantine::tool
{

ScratchFolder::ScratchFolder()
{
    const std::string path = getTemporaryFolder() + "/helvantine-" + uniqueIdToString(generateUniqueId());
    std::error_code error;
    if (!std::filesystem::create_directory(path, error))
        return;
    std::filesystem::permissions(path, std::filesystem::perms::owner_all, error);
    m_path = path + "/";
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    if (!m_path.empty())
        std::filesystem::remove_all(m_path, ignored);
}

} // namespace helvantine::tool
