// SPDX-License-Identifier: MIT
// An archive in a file, opened in place and unpacked: nothing may appear outside of the folder.
#include <helvantine/core/Buffer.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/ZipRead.h>
#include <helvantine/core/ZipVirtualFileSystem.h>

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <unistd.h>

using namespace helvantine;

namespace
{

/// A folder, in memory where that can be, gone at the end.
struct Place
{
    Place()
    {
        path = std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
        path += "/helvantine-fuzz-XXXXXX";
        if (!mkdtemp(path.data()))
            std::abort();
        archive = path + "/archive";
        file = open(archive.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    }
    ~Place() { std::filesystem::remove_all(path); }

    std::string path;
    std::string archive;
    int file;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Place place;
    if (ftruncate(place.file, 0) != 0 || pwrite(place.file, data, size, 0) != static_cast<ssize_t>(size))
        std::abort();

    const SmartRef<ZipVirtualFileSystem> archive(new ZipVirtualFileSystem);
    if (archive->open(place.archive.c_str()))
        delete archive->openFile("Helvantine.Script");
    archive->close();

    void* handle = ZipRead::open(place.archive.c_str());
    if (handle) {
        const std::string out = place.path + "/out/deep";
        ZipRead::extractFiles(handle, out.c_str());
        ZipRead::close(handle);
        for (const char* folder : {"/out", ""}) {
            const auto entries = std::filesystem::directory_iterator(place.path + folder);
            if (std::distance(begin(entries), end(entries)) > (*folder ? 1 : 2))
                std::abort();
        }
        std::filesystem::remove_all(place.path + "/out");
    }
    takeProblems();
    return 0;
}
