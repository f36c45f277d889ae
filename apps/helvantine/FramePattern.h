// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace helvantine::tool
{

/// The file names of a sequence: a path with one place for the frame number, as in "out/frame-%04d.png", or
/// with none, which names a single file. "%%" stands for a percent sign.
class FramePattern
{
public:
    /// Nothing for a text with two places or with any other use of the percent sign.
    static std::optional<FramePattern> parse(const std::string& text);

    bool hasPlace() const { return m_hasPlace; }
    std::string getPath(int frame) const;

private:
    std::string m_before;
    std::string m_after;
    bool m_hasPlace = false;
    int m_digits = 0; ///< filled up with zeros
};

} // namespace helvantine::tool
