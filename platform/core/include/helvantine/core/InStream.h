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

/// Reads what OutStream writes, from bytes that nobody has checked.
///
/// The first value that can't be (the stream runs dry, a length is above what is left, or the reader
/// itself says `fail`) makes the stream failed for good: from then on every value is zero or empty,
/// no byte is consumed, and the failure tells where and why. Readers of long lists test `failed` in
/// their loops and counts against `bytesLeft`. The stream reports nothing by itself; its user passes
/// `failureText` on. It reads nothing ahead, so the buffer's position is always the stream's.
class HELVANTINE_CORE_API InStream
{
public:
    /// With true, the stream deletes the attached buffer.
    explicit InStream(bool ownsBuffer = false);
    InStream(const InStream&) = delete;
    InStream& operator=(const InStream&) = delete;
    virtual ~InStream();

    /// Reads from the buffer's position on and forgets an earlier failure. Null is a stream that
    /// fails with the first value.
    virtual void attach(Buffer* buffer);

    /// The word in front of failure texts, "stream" at first; a constant text.
    void setModule(const char* module);

    void readBool(bool& value);
    void readInt(std::int32_t& value);
    void readUInt(std::uint32_t& value);
    void readFloat(float& value);
    void readUniqueId(UniqueId& value);
    void readVec4(Vec4& value);
    void readString(std::string& value);

    /// All `size` bytes, or zeros and a failure.
    void readBytes(void* data, std::size_t size);

    /// Makes the stream failed because of a value that it can't judge itself: a depth, an
    /// enumeration, a count. `what` reads like "count of 70000 nodes". The first failure stays.
    void fail(const std::string& what);

    /// Bytes between the position and the end; 0 once failed.
    std::uint64_t bytesLeft() const;

    bool failed() const { return m_failed; }

    /// Where in the buffer the missing bytes were to begin; 0 while not failed.
    std::uint64_t failureOffset() const { return m_failureOffset; }

    /// `script: string of 4294967295 bytes at offset 112, 37 bytes left`; empty while not failed.
    const std::string& failureText() const { return m_failureText; }

    /// The part of the text that tells what couldn't be read: `string of 4294967295 bytes`.
    const std::string& failureReason() const { return m_failureReason; }

    /// What was left where reading failed.
    std::uint64_t failureBytesLeft() const { return m_failureBytesLeft; }

private:
    bool readRaw(const char* kind, void* data, std::size_t size);
    void failShort(const char* kind, std::size_t size);

    Buffer* m_buffer = nullptr;
    const char* m_module = "stream";
    bool m_ownsBuffer;
    bool m_failed = false;
    std::uint64_t m_failureOffset = 0;
    std::uint64_t m_failureBytesLeft = 0;
    std::string m_failureReason;
    std::string m_failureText;
};

} // namespace helvantine
