// SPDX-License-Identifier: MIT
#include <helvantine/core/OutAsciiStream.h>

#include <helvantine/core/Buffer.h>

#include <charconv>
#include <cstring>

namespace helvantine
{

OutAsciiStream::OutAsciiStream(Buffer* buffer) : m_buffer(buffer) {}

void OutAsciiStream::writeString(const std::string& value)
{
    if (m_buffer)
        m_buffer->write(value.data(), value.size());
}

void OutAsciiStream::writeString(const char* value)
{
    if (m_buffer && value)
        m_buffer->write(value, std::strlen(value));
}

void OutAsciiStream::writeInt(int value)
{
    char digits[16];
    const char* end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    if (m_buffer)
        m_buffer->write(digits, static_cast<std::size_t>(end - digits));
}

void OutAsciiStream::writeChar(char value)
{
    if (m_buffer)
        m_buffer->write(&value, 1);
}

} // namespace helvantine
