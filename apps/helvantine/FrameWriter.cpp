// SPDX-License-Identifier: MIT
#include "FrameWriter.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string_view>

namespace helvantine::tool
{

bool isVideo(const std::string& path)
{
    static constexpr std::array<std::string_view, 7> types = {".mp4", ".mkv", ".mov", ".webm",
                                                              ".avi", ".gif", ".m4v"};
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::find(types.begin(), types.end(), extension) != types.end();
}

} // namespace helvantine::tool
