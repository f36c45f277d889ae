// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>

namespace helvantine
{

class Buffer;

/// Writes text into a buffer: no lengths, no quotes, nothing between the values.
class HELVANTINE_CORE_API OutAsciiStream
{
public:
    /// The buffer stays the caller's and outlives the stream. Null makes every write do nothing.
    explicit OutAsciiStream(Buffer* buffer);

    void writeString(const std::string& value);
    void writeString(const char* value);

    /// In decimal.
    void writeInt(int value);

    /// One byte as it is. A zero byte at the end makes the buffer's content a C string.
    void writeChar(char value);

private:
    Buffer* m_buffer;
};

} // namespace helvantine
