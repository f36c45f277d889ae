// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace helvantine
{

class Buffer;
struct UniqueId;
struct Vec4;

/// Writes binary values into a buffer: little-endian, fixed widths, nothing between them.
///
/// The buffer stays the caller's. The stream holds nothing back: what was written is in the buffer.
/// Before `attach`, and once a write was lost, writing does nothing and `failed` is true.
class HELVANTINE_CORE_API OutStream
{
public:
    OutStream() = default;
    OutStream(const OutStream&) = delete;
    OutStream& operator=(const OutStream&) = delete;
    virtual ~OutStream();

    /// Writes at the buffer's position from now on. Null detaches.
    virtual void attach(Buffer* buffer);

    void writeBool(bool value);
    void writeInt(std::int32_t value);
    void writeUInt(std::uint32_t value);
    void writeFloat(float value);
    void writeUniqueId(const UniqueId& value);
    void writeVec4(const Vec4& value);

    /// 32-bit length, then the bytes, no zero. A null text is written as an empty one.
    void writeString(const std::string& value);
    void writeCString(const char* value);

    void writeBytes(const void* data, std::size_t size);

    bool failed() const { return m_failed; }

private:
    void writeText(const char* text, std::size_t size);

    Buffer* m_buffer = nullptr;
    bool m_failed = true;
};

} // namespace helvantine
