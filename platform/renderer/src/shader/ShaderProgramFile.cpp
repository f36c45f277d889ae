// SPDX-License-Identifier: MIT
#include "shader/ShaderProgramFile.h"

#include "shader/ShaderProgramCode.h"

#include <helvantine/core/FileUtil.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

namespace helvantine
{

namespace
{

namespace fs = std::filesystem;

constexpr const char* programExtension = ".program";
constexpr const char* unfinishedPrefix = "new-"; ///< pipelines lie in the same folder and use it too
constexpr std::chrono::hours unfinishedAge{1};   ///< no writer takes this long

void removeUnfinishedFiles(const std::string& folder)
{
    const auto now = fs::file_time_type::clock::now();
    for (const FileInfo& file :
         findFiles(folder.c_str(), (std::string(unfinishedPrefix) + "*").c_str(), false)) {
        std::error_code error;
        const fs::file_time_type written = fs::last_write_time(file.path, error);
        if (!error && now - written > unfinishedAge)
            deleteFile(file.path.c_str());
    }
}

} // namespace

std::string shaderProgramPath(const std::string& folder, const Hash128& key)
{
    return folder + "/" + key.toString() + programExtension;
}

ShaderProgramPtr readShaderProgram(const std::string& folder, const Hash128& key)
{
    const std::string path = shaderProgramPath(folder, key);
    std::error_code error;
    const uintmax_t size = fs::is_regular_file(path, error) ? fs::file_size(path, error) : 0;
    if (error || size == 0 || size > maxEncodedProgramSize)
        return nullptr;
    std::ifstream file(path, std::ios::binary);
    std::string bytes(size_t(size), '\0');
    file.read(bytes.data(), std::streamsize(bytes.size()));
    return file ? decodeShaderProgram(key, bytes) : nullptr;
}

bool writeShaderProgram(const std::string& folder, const Hash128& key, const ShaderProgram& program)
{
    if (!makeFolders(folder.c_str()))
        return false;
    std::string temporary = createTemporaryFile(folder.c_str(), unfinishedPrefix);
    if (temporary.empty())
        return false;
    std::string bytes = encodeShaderProgram(key, program);
    std::ofstream file(temporary, std::ios::binary);
    file.write(bytes.data(), std::streamsize(bytes.size()));
    file.close();
    if (file && replaceFile(temporary.c_str(), shaderProgramPath(folder, key).c_str()))
        return true;
    deleteFile(temporary.c_str());
    return false;
}

void tidyShaderFolder(const std::string& folder, uint64_t largestSize)
{
    removeUnfinishedFiles(folder);
    uint64_t size = 0;
    std::vector<std::pair<fs::file_time_type, std::string>> programs;
    for (const FileInfo& file : findFiles(folder.c_str(), "*.program", false)) {
        std::error_code error; // a file that is gone meanwhile counts as the oldest
        programs.emplace_back(fs::last_write_time(file.path, error), file.path);
        size += file.size;
    }
    if (size <= largestSize)
        return;
    std::sort(programs.begin(), programs.end());
    programs.resize(programs.size() / 2);
    for (const auto& [written, path] : programs)
        deleteFile(path.c_str());
}

bool hasShaderPrograms(const std::string& folder)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        if (entry->path().extension() == programExtension)
            return true;
    return false;
}

} // namespace helvantine
