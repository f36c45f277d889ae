// SPDX-License-Identifier: MIT
#include <helvantine/core/HelperMain.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace helvantine
{

namespace
{

pid_t s_parent = -1;

/// The system also tells of a thread that ends; the process that it belonged to may go on.
void noticeParent(int)
{
    if (getppid() != s_parent)
        _exit(0);
}

void setLimit(__rlimit_resource_t resource, rlim_t value)
{
    rlimit limit{};
    getrlimit(resource, &limit);
    limit.rlim_cur = limit.rlim_max = std::min(value, limit.rlim_max); // no limit is the largest number
    setrlimit(resource, &limit);
}

} // namespace

void becomeHelper()
{
    s_parent = getppid();
    struct sigaction action
    {
    };
    action.sa_handler = noticeParent;
    sigaction(SIGUSR1, &action, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGUSR1);
    setLimit(RLIMIT_CORE, 0);
}

MessageChannel takeHelperChannel()
{
    constexpr int outOfTheWay = 100; // a descriptor that is rarely anybody's
    MessageChannel channel(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, outOfTheWay));
    const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    if (nothing > STDIN_FILENO)
        close(nothing);
    return channel;
}

void limitData(std::uint64_t bytes)
{
    setLimit(RLIMIT_DATA, bytes);
}

} // namespace helvantine
