// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <chrono>
#include <cstddef>
#include <string>

namespace helvantine
{

/// Messages over a stream socket, each behind its length in four bytes.
///
/// Whatever the other side does, neither operation waits past its deadline, takes more memory than it was
/// allowed, or raises SIGPIPE. After anything but Done the stream is of no more use.
class HELVANTINE_CORE_API MessageChannel
{
public:
    using Clock = std::chrono::steady_clock;
    using Deadline = Clock::time_point;

    static constexpr Deadline s_never = Deadline::max();

    enum class Result
    {
        Done,
        TimedOut,
        Closed,   ///< the other side is gone
        Malformed ///< a length above what was allowed
    };

    enum class State
    {
        Quiet,
        Pending, ///< there is something to read
        Closed
    };

    MessageChannel() = default;
    /// Takes the socket over.
    explicit MessageChannel(int socket) : m_socket(socket) {}
    ~MessageChannel() { close(); }

    MessageChannel(MessageChannel&& other) noexcept;
    MessageChannel& operator=(MessageChannel&& other) noexcept;

    Result send(const std::string& message, Deadline deadline);
    Result receive(std::string& message, size_t largest, Deadline deadline);

    /// Until there is something to read, the end of the stream included.
    Result waitForMessage(Deadline deadline) const;

    State getState() const;
    void close();

private:
    Result sendBytes(const char* bytes, size_t size, Deadline deadline);
    Result receiveBytes(char* bytes, size_t size, Deadline deadline);
    Result wait(short event, Deadline deadline) const;

    int m_socket = -1;
};

} // namespace helvantine
