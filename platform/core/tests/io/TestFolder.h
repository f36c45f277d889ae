// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/System.h>
#include <helvantine/core/WinFile.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace helvantine::test
{

/// A folder of one test's own, gone with the test.
class TestFolder
{
public:
    TestFolder()
    {
        std::string name = getTemporaryFolder() + "/helvantine-io-XXXXXX";
        m_path = mkdtemp(name.data());
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;
    ~TestFolder() { std::filesystem::remove_all(m_path); }

    std::string operator/(const std::string& name) const { return m_path + "/" + name; }
    const char* path() const { return m_path.c_str(); }

    /// Writes a file, with its folders, and returns its path.
    std::string write(const std::string& name, const std::string& bytes) const
    {
        const std::string path = *this / name;
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    std::size_t countFiles() const
    {
        const auto begin = std::filesystem::recursive_directory_iterator(m_path);
        return static_cast<std::size_t>(
            std::distance(begin, std::filesystem::recursive_directory_iterator()));
    }

private:
    std::string m_path;
};

/// The whole file; "(absent)" if it isn't there.
inline std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return file.is_open() ? bytes.str() : "(absent)";
}

/// What is left of a buffer, which is deleted; "(null)" for none.
inline std::string readAndDelete(Buffer* buffer)
{
    if (!buffer)
        return "(null)";
    std::vector<unsigned char> bytes;
    readRemaining(*buffer, bytes);
    delete buffer;
    return {bytes.begin(), bytes.end()};
}

} // namespace helvantine::test
