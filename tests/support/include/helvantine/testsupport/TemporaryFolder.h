// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace helvantine::test
{

/// A fresh folder that goes, with all that is in it, when the object does.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& getPath() const { return m_path; } ///< ends in a separator
    std::string file(const std::string& name) const { return m_path + name; }

private:
    std::string m_path;
};

/// All bytes of a file; empty if it can't be read.
std::string readFile(const std::string& path);
bool writeFile(const std::string& path, const std::string& bytes);

} // namespace helvantine::test
