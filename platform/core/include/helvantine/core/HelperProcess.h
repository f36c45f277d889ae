// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/MessageChannel.h>

#include <chrono>
#include <string>
#include <vector>

namespace helvantine
{

/// How a process ended.
struct ProcessEnd
{
    enum class Kind
    {
        Unknown, ///< someone else has waited for it
        Exited,
        Signalled
    };
    Kind kind = Kind::Unknown;
    int code = 0; ///< exit code or signal
};

/// A program that runs beside this one and talks to it over its standard input, a socket.
///
/// It inherits the environment and nothing else: its output goes nowhere, other descriptors are closed,
/// signals are at their defaults, and it is in a process group of its own, where a terminal's keys don't reach
/// it. It reads the end of its input when this process ends, however that happens.
///
/// Starting doesn't run this program's code in the child, so other threads may do as they like meanwhile. In
/// the child of a fork the object owns nothing and may be started anew.
class HELVANTINE_CORE_API HelperProcess
{
public:
    HelperProcess() = default;
    ~HelperProcess() { kill(); }

    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// Ends what ran before. False, with words, if the system refuses. Doesn't wait for the program to do
    /// anything.
    bool start(const std::string& program, const std::vector<std::string>& arguments, std::string& error);

    /// Is there a process that was started here? It may have ended by itself.
    bool isStarted() const;

    /// Until it sends something or ends, has had so much of a processor since its start, or the deadline passes.
    MessageChannel::Result waitForMessage(std::chrono::nanoseconds processorLimit,
                                          MessageChannel::Deadline deadline) const;

    /// What it has had of a processor since its start; 0 if that can't be told.
    std::chrono::nanoseconds getProcessorTime() const;

    MessageChannel& channel() { return m_channel; }
    const MessageChannel& channel() const { return m_channel; }

    /// Ends it now, and leaves no zombie.
    ProcessEnd kill();

    /// Waits a moment for a process that has closed its channel to end by itself, and then as kill does.
    ProcessEnd wait();

private:
    MessageChannel m_channel;
    int m_process = -1; ///< of the system's numbers for processes
    int m_owner = -1;   ///< the process that started it
};

/// The file of a helper's program: what the environment variable names, else the file of that name beside the library
/// that holds `address`, else beside this process's executable. Where there is none: the first of the two, for words
/// about what is missing. Empty if the variable is set to nothing.
HELVANTINE_CORE_API std::string findHelper(const char* programName, const char* variable,
                                           const void* address);

} // namespace helvantine
