// SPDX-License-Identifier: MIT
#include <helvantine/core/Buffer.h>

namespace helvantine
{

Buffer::~Buffer() = default;

bool Buffer::flush()
{
    return true;
}

void Buffer::setName(const char* name)
{
    m_name = name ? name : "";
}

bool readRemaining(Buffer& buffer, std::vector<unsigned char>& bytes, std::uint64_t limit)
{
    bytes.clear();
    const std::uint64_t left = buffer.getSize() - buffer.tell();
    if (left > limit)
        return false;
    bytes.resize(left);
    if (buffer.read(bytes.data(), bytes.size()) == bytes.size())
        return true;
    bytes.clear();
    return false;
}

} // namespace helvantine
