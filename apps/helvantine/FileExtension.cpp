// SPDX-License-Identifier: MIT
#include "FileExtension.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace helvantine::tool
{

std::string getExtension(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

} // namespace helvantine::tool
