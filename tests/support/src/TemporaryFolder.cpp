// SPDX-License-Identifier: MIT
#include <helvantine/testsupport/TemporaryFolder.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace helvantine::test
{

TemporaryFolder::TemporaryFolder()
{
    std::random_device random;
    std::filesystem::path folder;
    do {
        folder = std::filesystem::temp_directory_path() / ("helvantine-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(folder));
    m_path = folder.string() + "/";
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

bool writeFile(const std::string& path, const std::string& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.flush();
    return file.good();
}

} // namespace helvantine::test
