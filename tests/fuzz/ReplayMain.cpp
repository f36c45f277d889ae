// SPDX-License-Identifier: MIT
// Stands in for libFuzzer's main: feeds the files of the given folders, and each of them cut at some places.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argumentCount, char** arguments)
{
    int files = 0;
    for (int i = 1; i < argumentCount; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), {});
            const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
            for (std::size_t part = 0; part <= 16; ++part)
                LLVMFuzzerTestOneInput(data, bytes.size() * part / 16);
            ++files;
        }
    }
    std::printf("%d files replayed\n", files);
    return files > 0 ? 0 : 1;
}
