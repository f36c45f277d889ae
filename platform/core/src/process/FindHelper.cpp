// SPDX-License-Identifier: MIT
#include <helvantine/core/HelperProcess.h>
#include <helvantine/core/Library.h>
#include <helvantine/core/Path.h>
#include <helvantine/core/System.h>

#include <cstdlib>
#include <filesystem>

namespace helvantine
{

std::string findHelper(const char* programName, const char* variable, const void* address)
{
    if (const char* chosen = secure_getenv(variable))
        return chosen;
    std::string expected;
    for (const std::string& neighbour : {getLibraryPath(address), getExecutablePath()}) {
        std::error_code error;
        const auto path = std::filesystem::absolute(getPath(neighbour.c_str()), error) / programName;
        if (!error && std::filesystem::is_regular_file(path, error))
            return path.string();
        if (expected.empty())
            expected = path.string();
    }
    return expected;
}

} // namespace helvantine
