// SPDX-License-Identifier: MIT
#include "PaletteResource.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/core/Report.h>

#include <charconv>
#include <memory>
#include <sstream>

namespace silk
{

using namespace helvantine;

HELVANTINE_PLUGIN_RECORDS(PaletteResource, Resource, PluginResource, "5B0C2E5A-7D11-4E0C-9A3F-0B6C51D87A02",
                          "Silk/Palette", "Palette", true)

namespace
{

constexpr std::uint64_t s_maxFileSize = 4096;

bool readText(const char* path, std::string& text)
{
    const std::unique_ptr<Buffer> file(openFile(path));
    std::vector<unsigned char> bytes;
    if (!file || !readRemaining(*file, bytes, s_maxFileSize))
        return false;
    text.assign(bytes.begin(), bytes.end());
    return true;
}

/// From "#RRGGBB".
bool parseColor(const std::string& line, Vec4& color)
{
    unsigned rgb = 0;
    const char* end = line.data() + line.size();
    if (line.size() != 7 || line[0] != '#' || std::from_chars(line.data() + 1, end, rgb, 16).ptr != end)
        return false;
    const auto channel = [rgb](unsigned shift) { return static_cast<float>(rgb >> shift & 255) / 255.0f; };
    color = Vec4(channel(16), channel(8), channel(0), 1.0f);
    return true;
}

bool refuse(const char* path, const std::string& why)
{
    reportProblem("silk", std::string(path) + ": " + why);
    return false;
}

} // namespace

bool PaletteResource::load(const char* path)
{
    std::string text;
    if (!readText(path, text))
        return refuse(path, "can't be read, or is larger than " + std::to_string(s_maxFileSize) + " bytes");
    std::vector<Vec4> colors;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (!parseColor(line, colors.emplace_back()))
            return refuse(path, "line " + std::to_string(colors.size()) + " is no colour such as #FFA040");
    }
    if (colors.size() < s_minColors || colors.size() > s_maxColors)
        return refuse(path, std::to_string(colors.size()) + " colours, expected " +
                                std::to_string(s_minColors) + " to " + std::to_string(s_maxColors));
    m_colors = std::move(colors);
    setFilename(path);
    setName(path);
    return true;
}

} // namespace silk
