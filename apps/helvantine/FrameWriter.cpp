// SPDX-License-Identifier: MIT
#include "FrameWriter.h"

#include "FileExtension.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace helvantine::tool
{

bool isVideo(const std::string& path)
{
    static constexpr std::array<std::string_view, 7> types = {".mp4", ".mkv", ".mov", ".webm",
                                                              ".avi", ".gif", ".m4v"};
    return std::ranges::find(types, getExtension(path)) != types.end();
}

} // namespace helvantine::tool
