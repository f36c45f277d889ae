// SPDX-License-Identifier: MIT
#include <helvantine/core/MessageChannel.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <utility>

namespace helvantine
{

namespace
{

constexpr size_t headSize = 4;
constexpr size_t pieceSize = size_t(1) << 20; ///< memory follows what arrives, not what was announced

/// As poll counts: rounded up, so that the deadline is past when poll says so.
int millisecondsUntil(MessageChannel::Deadline deadline)
{
    if (deadline == MessageChannel::s_never)
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - MessageChannel::Clock::now());
    return int(std::clamp<int64_t>(left.count(), 0, std::numeric_limits<int>::max()));
}

bool wouldBlock()
{
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

MessageChannel::MessageChannel(MessageChannel&& other) noexcept : m_socket(std::exchange(other.m_socket, -1))
{
}

MessageChannel& MessageChannel::operator=(MessageChannel&& other) noexcept
{
    std::swap(m_socket, other.m_socket);
    return *this;
}

void MessageChannel::close()
{
    if (m_socket >= 0)
        ::close(std::exchange(m_socket, -1));
}

MessageChannel::Result MessageChannel::send(const std::string& message, Deadline deadline)
{
    if (message.size() > std::numeric_limits<uint32_t>::max())
        return Result::Malformed;
    char head[headSize];
    for (size_t i = 0; i < headSize; ++i)
        head[i] = char(message.size() >> (8 * i) & 255);
    const Result sent = sendBytes(head, headSize, deadline);
    return sent == Result::Done ? sendBytes(message.data(), message.size(), deadline) : sent;
}

MessageChannel::Result MessageChannel::receive(std::string& message, size_t largest, Deadline deadline)
{
    char head[headSize];
    message.clear();
    Result received = receiveBytes(head, headSize, deadline);
    size_t size = 0;
    for (size_t i = 0; i < headSize && received == Result::Done; ++i)
        size |= size_t(static_cast<unsigned char>(head[i])) << (8 * i);
    if (size > largest)
        return Result::Malformed;
    while (received == Result::Done && message.size() < size) {
        const size_t at = message.size();
        message.resize(std::min(size, at + pieceSize));
        received = receiveBytes(message.data() + at, message.size() - at, deadline);
    }
    return received;
}

MessageChannel::Result MessageChannel::waitForMessage(Deadline deadline) const
{
    return wait(POLLIN, deadline);
}

MessageChannel::State MessageChannel::getState() const
{
    char byte = 0;
    const ssize_t count = m_socket < 0 ? 0 : ::recv(m_socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (count > 0)
        return State::Pending;
    return count < 0 && wouldBlock() ? State::Quiet : State::Closed;
}

MessageChannel::Result MessageChannel::sendBytes(const char* bytes, size_t size, Deadline deadline)
{
    while (size > 0) {
        const ssize_t count = ::send(m_socket, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0) {
            bytes += count;
            size -= size_t(count);
        } else if (!wouldBlock()) {
            return Result::Closed;
        } else if (const Result ready = wait(POLLOUT, deadline); ready != Result::Done) {
            return ready;
        }
    }
    return Result::Done;
}

MessageChannel::Result MessageChannel::receiveBytes(char* bytes, size_t size, Deadline deadline)
{
    while (size > 0) {
        const ssize_t count = ::recv(m_socket, bytes, size, MSG_DONTWAIT);
        if (count > 0) {
            bytes += count;
            size -= size_t(count);
        } else if (count == 0 || !wouldBlock()) {
            return Result::Closed;
        } else if (const Result ready = wait(POLLIN, deadline); ready != Result::Done) {
            return ready;
        }
    }
    return Result::Done;
}

/// Looks once more after the deadline: a host that was stopped meanwhile finds the answer that lies there.
MessageChannel::Result MessageChannel::wait(short event, Deadline deadline) const
{
    pollfd entry{m_socket, event, 0};
    for (;;) {
        const int timeout = millisecondsUntil(deadline);
        const int count = ::poll(&entry, 1, timeout);
        if (count > 0)
            return Result::Done;
        if (count == 0 && timeout == 0)
            return Result::TimedOut;
        if (count < 0 && errno != EINTR)
            return Result::Closed;
    }
}

} // namespace helvantine
