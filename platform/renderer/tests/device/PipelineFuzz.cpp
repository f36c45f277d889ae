// SPDX-License-Identifier: MIT
// The file of a driver's pipelines: as it is, and with a head that fits it.
#include "shader/ByteCodec.h"
#include "vulkan/PipelineFile.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace helvantine;

namespace
{

std::vector<std::uint8_t> readAsFile(const std::string& bytes)
{
    static const int handle = memfd_create("pipelines", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(handle);
    if (ftruncate(handle, 0) != 0 || pwrite(handle, bytes.data(), bytes.size(), 0) != ssize_t(bytes.size()))
        std::abort();
    PipelineFile file;
    file.openPath(path);
    return file.read();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string content(reinterpret_cast<const char*>(data), size);
    if (readAsFile(content).size() > size)
        std::abort();
    ByteWriter head;
    head.number(0x50435648);
    head.number(1);
    head.number(size, 8);
    head.hash(hashBytes(data, size));
    if (readAsFile(head.bytes + content).size() != size)
        std::abort(); // what fits is read
    return 0;
}
