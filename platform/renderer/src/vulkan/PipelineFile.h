// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace helvantine
{

class VulkanDevice;

/// The file that keeps a driver's pipeline cache between runs, beside the compiled shaders.
///
/// Its header holds a magic word, the size and a hash of the content; a file that is damaged, of another
/// driver or of another version counts as absent. It is replaced at once, so two processes never see half
/// of it.
class PipelineFile
{
public:
    /// Empty folder: nothing is kept.
    void open(const std::string& folder, const VulkanDevice& device);
    void openPath(const std::string& path) { m_path = path; }

    std::vector<uint8_t> read() const; ///< empty if there is nothing usable
    void write(const std::vector<uint8_t>& content) const;

private:
    std::string m_path; ///< empty for none
};

} // namespace helvantine
