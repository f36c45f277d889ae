// SPDX-License-Identifier: MIT
#include "DdsFile.h"

#include <initializer_list>

namespace helvantine::test
{

namespace
{

void append(Bytes& file, std::initializer_list<uint32_t> words)
{
    for (const uint32_t word : words) {
        for (unsigned shift = 0; shift < 32; shift += 8)
            file.push_back(static_cast<uint8_t>(word >> shift));
    }
}

} // namespace

Bytes DdsFile::write() const
{
    Bytes file;
    append(file, {makeFourCC("DDS "), 124, 0x1007, height, width, 0, 0, mipCount});
    append(file, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    append(file, {32, pixelFlags, dxgiFormat ? makeFourCC("DX10") : fourCC, bitCount});
    append(file, {masks[0], masks[1], masks[2], masks[3]});
    append(file, {0x1000, caps2, 0, 0, 0});
    if (dxgiFormat)
        append(file, {dxgiFormat, dimension, miscFlags, arraySize, 0});
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

Bytes makeBytes(size_t count)
{
    Bytes bytes(count);
    for (size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 + 3);
    return bytes;
}

} // namespace helvantine::test
