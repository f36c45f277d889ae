// SPDX-License-Identifier: MIT
#include <helvantine/core/InStream.h>

#include <helvantine/core/Buffer.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/core/Vec4.h>

#include <bit>
#include <cstring>

namespace helvantine
{

static_assert(std::endian::native == std::endian::little, "values are read as they lie in memory");

InStream::InStream(bool ownsBuffer) : m_ownsBuffer(ownsBuffer) {}

InStream::~InStream()
{
    if (m_ownsBuffer)
        delete m_buffer;
}

void InStream::attach(Buffer* buffer)
{
    if (m_ownsBuffer && m_buffer != buffer)
        delete m_buffer;
    m_buffer = buffer;
    m_failed = false;
    m_failureOffset = 0;
    m_failureBytesLeft = 0;
    m_failureReason.clear();
    m_failureText.clear();
}

void InStream::setModule(const char* module)
{
    m_module = module ? module : "stream";
}

std::uint64_t InStream::bytesLeft() const
{
    return m_buffer && !m_failed ? m_buffer->getSize() - m_buffer->tell() : 0;
}

void InStream::fail(const std::string& what)
{
    if (m_failed)
        return;
    m_failureOffset = m_buffer ? m_buffer->tell() : 0;
    m_failureBytesLeft = bytesLeft();
    m_failureReason = what;
    m_failureText = std::string(m_module) + ": " + what + " at offset " + std::to_string(m_failureOffset) +
                    ", " + std::to_string(m_failureBytesLeft) + " bytes left";
    m_failed = true;
}

void InStream::failShort(const char* kind, std::size_t size)
{
    fail(std::string(kind) + " of " + std::to_string(size) + " bytes");
}

bool InStream::readRaw(const char* kind, void* data, std::size_t size)
{
    if (!m_failed) {
        const std::size_t got = m_buffer ? m_buffer->read(data, size) : 0;
        if (m_buffer && got == size)
            return true;
        if (m_buffer)
            m_buffer->seek(m_buffer->tell() - got);
        failShort(kind, size);
    }
    if (size != 0)
        std::memset(data, 0, size);
    return false;
}

void InStream::readBool(bool& value)
{
    unsigned char byte = 0;
    readRaw("bool", &byte, 1);
    value = byte != 0;
}

void InStream::readInt(std::int32_t& value)
{
    readRaw("integer", &value, sizeof(value));
}

void InStream::readUInt(std::uint32_t& value)
{
    readRaw("integer", &value, sizeof(value));
}

void InStream::readFloat(float& value)
{
    readRaw("float", &value, sizeof(value));
}

void InStream::readUniqueId(UniqueId& value)
{
    unsigned char bytes[sizeof(UniqueId)];
    readRaw("id", bytes, sizeof(bytes));
    std::memcpy(static_cast<void*>(&value), bytes, sizeof(bytes));
}

void InStream::readVec4(Vec4& value)
{
    unsigned char bytes[sizeof(Vec4)];
    readRaw("vector", bytes, sizeof(bytes));
    std::memcpy(static_cast<void*>(&value), bytes, sizeof(bytes));
}

void InStream::readString(std::string& value)
{
    std::uint32_t size = 0;
    value.clear();
    if (!readRaw("length", &size, sizeof(size)))
        return;
    if (size > bytesLeft()) {
        failShort("string", size);
        return;
    }
    value.resize(size);
    if (!readRaw("string", value.data(), size))
        value.clear();
}

void InStream::readBytes(void* data, std::size_t size)
{
    readRaw("block", data, size);
}

} // namespace helvantine
