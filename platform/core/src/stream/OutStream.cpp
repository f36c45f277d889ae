// SPDX-License-Identifier: MIT
#include <helvantine/core/OutStream.h>

#include <helvantine/core/Buffer.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/core/Vec4.h>

#include <bit>
#include <cstring>
#include <limits>

namespace helvantine
{

static_assert(std::endian::native == std::endian::little, "values are written as they lie in memory");

OutStream::~OutStream() = default;

void OutStream::attach(Buffer* buffer)
{
    m_buffer = buffer;
    m_failed = buffer == nullptr;
}

void OutStream::writeBytes(const void* data, std::size_t size)
{
    if (!m_failed && m_buffer->write(data, size) != size)
        m_failed = true;
}

void OutStream::writeBool(bool value)
{
    const unsigned char byte = value ? 1 : 0;
    writeBytes(&byte, 1);
}

void OutStream::writeInt(std::int32_t value)
{
    writeBytes(&value, sizeof(value));
}

void OutStream::writeUInt(std::uint32_t value)
{
    writeBytes(&value, sizeof(value));
}

void OutStream::writeFloat(float value)
{
    writeBytes(&value, sizeof(value));
}

void OutStream::writeUniqueId(const UniqueId& value)
{
    static_assert(sizeof(UniqueId) == 16);
    writeBytes(&value, sizeof(value));
}

void OutStream::writeVec4(const Vec4& value)
{
    static_assert(sizeof(Vec4) == 16);
    writeBytes(&value, sizeof(value));
}

void OutStream::writeString(const std::string& value)
{
    writeText(value.data(), value.size());
}

void OutStream::writeCString(const char* value)
{
    writeText(value, value ? std::strlen(value) : 0);
}

void OutStream::writeText(const char* text, std::size_t size)
{
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        m_failed = true;
        return;
    }
    writeUInt(static_cast<std::uint32_t>(size));
    if (size != 0)
        writeBytes(text, size);
}

} // namespace helvantine
