// SPDX-License-Identifier: MIT
// What a file of a compiled program holds behind a head that fits it.
#include "shader/ByteCodec.h"
#include "shader/ShaderProgramCode.h"

#include <cstdint>
#include <cstdlib>

using namespace helvantine;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string file(reinterpret_cast<const char*>(data), size);
    const Hash128 key;
    if (decodeShaderProgram(key, file))
        return 0; // as it lies on disk

    ByteWriter content;
    content.hash(key);
    content.bytes += file;
    constexpr std::uint32_t magic = 0x50535648;
    constexpr std::uint32_t version = 1;
    ByteWriter head;
    head.number(magic);
    head.number(version);
    head.number(content.bytes.size(), 8);
    head.hash(hashBytes(content.bytes.data(), content.bytes.size()));
    const ShaderProgramPtr program = decodeShaderProgram(key, head.bytes + content.bytes);
    if (program && !decodeShaderProgram(key, encodeShaderProgram(key, *program)))
        std::abort(); // what was read can be written
    return 0;
}
