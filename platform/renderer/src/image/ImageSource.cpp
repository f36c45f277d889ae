// SPDX-License-Identifier: MIT
#include "image/ImageSource.h"

#include <helvantine/core/Buffer.h>

#include <algorithm>

namespace helvantine
{

namespace
{

constexpr size_t windowBytes = 65536;

} // namespace

ImageSource::ImageSource(std::span<const uint8_t> bytes) : m_bytes(bytes), m_size(bytes.size()) {}

ImageSource::ImageSource(Buffer& buffer) : m_size(buffer.getSize()), m_buffer(&buffer) {}

std::span<const uint8_t> ImageSource::view(uint64_t offset, size_t size)
{
    if (offset >= m_size)
        return {};
    size = static_cast<size_t>(std::min<uint64_t>(size, m_size - offset));
    const bool inWindow = offset >= m_windowStart && offset - m_windowStart <= m_bytes.size() &&
                          size <= m_bytes.size() - (offset - m_windowStart);
    if (!inWindow && m_buffer)
        moveWindow(offset, size);
    const size_t start = std::min(static_cast<size_t>(offset - m_windowStart), m_bytes.size());
    return m_bytes.subspan(start, std::min(size, m_bytes.size() - start));
}

/// Who goes backwards finds the bytes before the wanted ones as well.
void ImageSource::moveWindow(uint64_t offset, size_t size)
{
    m_window.resize(std::max(size, windowBytes));
    const size_t spare = m_window.size() - size;
    m_windowStart = offset < m_windowStart ? offset - std::min<uint64_t>(offset, spare) : offset;
    const size_t wanted = static_cast<size_t>(std::min<uint64_t>(m_window.size(), m_size - m_windowStart));
    m_bytes = {m_window.data(), m_buffer->seek(m_windowStart) ? m_buffer->read(m_window.data(), wanted) : 0};
}

uint32_t ImageSource::readNumber(uint64_t offset, size_t size)
{
    const std::span<const uint8_t> bytes = view(offset, size);
    uint32_t number = 0;
    for (size_t i = 0; i < size && bytes.size() == size; ++i)
        number |= uint32_t(bytes[i]) << (8 * i);
    return number;
}

uint32_t ImageSource::readByte(uint64_t offset)
{
    return readNumber(offset, 1);
}

uint32_t ImageSource::readShort(uint64_t offset)
{
    return readNumber(offset, 2);
}

uint32_t ImageSource::readLong(uint64_t offset)
{
    return readNumber(offset, 4);
}

bool ImageSource::startsWith(std::span<const uint8_t> magic)
{
    const std::span<const uint8_t> start = view(0, magic.size());
    return std::equal(start.begin(), start.end(), magic.begin(), magic.end());
}

} // namespace helvantine
