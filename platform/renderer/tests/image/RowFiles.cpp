// SPDX-License-Identifier: MIT
#include "RowFiles.h"

#include <algorithm>

namespace helvantine::test
{

namespace
{

void append(Bytes& file, unsigned count, uint32_t number)
{
    for (unsigned i = 0; i < count; ++i)
        file.push_back(static_cast<uint8_t>(number >> (8 * i)));
}

void append(Bytes& file, const Bytes& bytes)
{
    file.insert(file.end(), bytes.begin(), bytes.end());
}

} // namespace

Bytes BmpFile::write() const
{
    Bytes header;
    append(header, 4, headerBytes);
    const unsigned sideBytes = headerBytes == 12 ? 2 : 4;
    append(header, sideBytes, width);
    append(header, sideBytes, static_cast<uint32_t>(height));
    append(header, 2, 1);
    append(header, 2, bits);
    append(header, 4, compression);
    header.resize(headerBytes == 12 ? 12 : 40);
    for (const uint32_t mask : masks)
        append(header, 4, mask);
    header.resize(std::max<size_t>(header.size(), headerBytes));
    Bytes file = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0};
    append(file, 4, static_cast<uint32_t>(14 + header.size() + palette.size()));
    append(file, header);
    append(file, palette);
    append(file, body);
    return file;
}

Bytes TgaFile::write() const
{
    Bytes file = {3, static_cast<uint8_t>(mapBits ? 1 : 0), type};
    append(file, 2, mapOrigin);
    append(file, 2, mapLength);
    file.push_back(mapBits);
    append(file, 4, 0);
    append(file, 2, width);
    append(file, 2, height);
    append(file, {bits, origin, 'i', 'd', '!'});
    append(file, body);
    return file;
}

} // namespace helvantine::test
