// SPDX-License-Identifier: MIT
#include <helvantine/core/MemoryBuffer.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace helvantine
{

MemoryBuffer::MemoryBuffer(int capacity, int growth) : m_growth(static_cast<std::size_t>(std::max(growth, 1)))
{
    m_bytes.reserve(static_cast<std::size_t>(std::max(capacity, 1)));
}

MemoryBuffer::MemoryBuffer(std::vector<unsigned char> bytes) : m_bytes(std::move(bytes)), m_growth(4096) {}

std::size_t MemoryBuffer::read(void* data, std::size_t size)
{
    size = std::min(size, m_bytes.size() - m_position);
    if (size != 0)
        std::memcpy(data, m_bytes.data() + m_position, size);
    m_position += size;
    return size;
}

std::size_t MemoryBuffer::write(const void* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t end = m_position + size;
    if (end > m_bytes.capacity())
        m_bytes.reserve(std::max(end, m_bytes.capacity() + std::max(m_growth, m_bytes.capacity())));
    if (end > m_bytes.size())
        m_bytes.resize(end);
    std::memcpy(m_bytes.data() + m_position, data, size);
    m_position = end;
    return size;
}

bool MemoryBuffer::seek(std::uint64_t offset)
{
    if (offset > m_bytes.size())
        return false;
    m_position = static_cast<std::size_t>(offset);
    return true;
}

const unsigned char* MemoryBuffer::getData() const
{
    static constexpr unsigned char nothing = 0;
    return m_bytes.empty() ? &nothing : m_bytes.data();
}

} // namespace helvantine
