// SPDX-License-Identifier: MIT
#include "FrameWriter.h"

#include "FileExtension.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace helvantine::tool
{

namespace
{

constexpr std::array<std::string_view, 7> videoTypes = {".mp4", ".mkv", ".mov", ".webm",
                                                        ".avi", ".gif", ".m4v"};

} // namespace

bool isVideo(const std::string& path)
{
    return std::ranges::find(videoTypes, getExtension(path)) != videoTypes.end();
}

std::string listVideoTypes()
{
    std::string list;
    for (const std::string_view type : videoTypes)
        list += (list.empty() ? "" : ", ") + std::string(type);
    return list;
}

} // namespace helvantine::tool
