// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Vec4.h>
#include <helvantine/resource/Resource.h>

#include <string>
#include <vector>

namespace silk
{

/// A few colours from a text file with a line such as "#FFA040" for each.
class PaletteResource : public helvantine::Resource
{
    HELVANTINE_PLUGIN_CLASS(PaletteResource)

    static constexpr std::size_t s_minColors = 2;
    static constexpr std::size_t s_maxColors = 8;

    /// The files named here are saved into the document.
    std::vector<std::string> getFiles() const override { return {getFilename()}; }

    /// Opens the path through the document, so that it is found in the archive. On failure nothing changes,
    /// and the report says why.
    bool load(const char* path);

    const std::vector<helvantine::Vec4>& getColors() const { return m_colors; } ///< none before a load

private:
    std::vector<helvantine::Vec4> m_colors;
};

} // namespace silk
