// SPDX-License-Identifier: MIT
#include <helvantine/core/HelperProcess.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

namespace helvantine
{

namespace
{

constexpr int endingSteps = 500; ///< of a millisecond: what a process gets to end by itself

std::string describeError(int error)
{
    return std::generic_category().message(error);
}

/// What the child does with its descriptors before the program runs.
class FileActions
{
public:
    explicit FileActions(int input)
    {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        posix_spawn_file_actions_addopen(&m_actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_adddup2(&m_actions, STDOUT_FILENO, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }

    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    const posix_spawn_file_actions_t* get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

/// A process group of its own, and signals as if no one had touched them.
class SpawnAttributes
{
public:
    SpawnAttributes()
    {
        sigset_t all;
        sigset_t none;
        sigfillset(&all);
        sigemptyset(&none);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setflags(&m_attributes,
                                 POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        posix_spawnattr_setpgroup(&m_attributes, 0);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setsigmask(&m_attributes, &none);
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&m_attributes); }

    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    const posix_spawnattr_t* get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

/// 0 or the error.
int spawn(const std::string& program, const std::vector<std::string>& arguments, int input, pid_t& process)
{
    std::vector<char*> raw = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        raw.push_back(const_cast<char*>(argument.c_str()));
    raw.push_back(nullptr);
    const FileActions actions(input);
    const SpawnAttributes attributes;
    return posix_spawn(&process, program.c_str(), actions.get(), attributes.get(), raw.data(), environ);
}

ProcessEnd endOf(pid_t waited, int status)
{
    if (waited > 0 && WIFEXITED(status))
        return {ProcessEnd::Kind::Exited, WEXITSTATUS(status)};
    if (waited > 0 && WIFSIGNALED(status))
        return {ProcessEnd::Kind::Signalled, WTERMSIG(status)};
    return {};
}

pid_t waitFor(pid_t process, int options, int& status)
{
    pid_t waited = 0;
    do
        waited = waitpid(process, &status, options);
    while (waited < 0 && errno == EINTR);
    return waited;
}

} // namespace

bool HelperProcess::start(const std::string& program, const std::vector<std::string>& arguments,
                          std::string& error)
{
    kill();
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        error = "no socket: " + describeError(errno);
        return false;
    }
    MessageChannel ours(ends[0]);
    const MessageChannel theirs(ends[1]);
    pid_t process = -1;
    if (const int failure = spawn(program, arguments, ends[1], process); failure != 0) {
        error = program + ": " + describeError(failure);
        return false;
    }
    m_channel = std::move(ours);
    m_process = process;
    m_owner = getpid();
    return true;
}

bool HelperProcess::isStarted() const
{
    return m_process > 0 && m_owner == getpid();
}

std::chrono::nanoseconds HelperProcess::getProcessorTime() const
{
    clockid_t clock = 0;
    timespec time{};
    if (!isStarted() || clock_getcpuclockid(m_process, &clock) != 0 || clock_gettime(clock, &time) != 0)
        return {};
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Until the limit can be reached there is no need to look at the clock of its processor again.
MessageChannel::Result HelperProcess::waitForMessage(std::chrono::nanoseconds processorLimit,
                                                     MessageChannel::Deadline deadline) const
{
    for (;;) {
        const auto left = processorLimit - getProcessorTime();
        const auto next = std::min(deadline, MessageChannel::Clock::now() + left);
        const auto result = m_channel.waitForMessage(next);
        if (result != MessageChannel::Result::TimedOut || next == deadline ||
            getProcessorTime() >= processorLimit)
            return result;
    }
}

ProcessEnd HelperProcess::kill()
{
    m_channel.close();
    const pid_t process = std::exchange(m_process, -1);
    if (process <= 0 || m_owner != getpid())
        return {};
    int status = 0;
    pid_t waited =
        waitFor(process, WNOHANG, status); // the number of a child that others waited for isn't ours
    if (waited == 0) {
        ::kill(process, SIGKILL);
        waited = waitFor(process, 0, status);
    }
    return endOf(waited, status);
}

ProcessEnd HelperProcess::wait()
{
    for (int step = 0; isStarted() && step < endingSteps; ++step) {
        int status = 0;
        if (const pid_t waited = waitFor(m_process, WNOHANG, status); waited != 0) {
            m_process = -1;
            m_channel.close();
            return endOf(waited, status);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return kill();
}

} // namespace helvantine
