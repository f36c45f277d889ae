// SPDX-License-Identifier: MIT
#include "shader/helper/HelperLimits.h"

#include "shader/helper/ShaderJob.h"

#include <helvantine/core/HelperMain.h>

#include <malloc.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <new>

namespace helvantine
{

namespace
{

#ifdef HELVANTINE_INSTRUMENTED
constexpr bool isInstrumented = true;
#else
constexpr bool isInstrumented = false;
#endif

constexpr uint64_t grownShare = 4; ///< of its memory: what a process may keep from job to job
constexpr uintptr_t stackSlack = 1 << 20;

uintptr_t s_stackTop = 0;
uintptr_t s_stackBottom = 0;

void setLimit(__rlimit_resource_t resource, uint64_t value)
{
    rlimit limit{};
    getrlimit(resource, &limit);
    limit.rlim_cur = limit.rlim_max == RLIM_INFINITY || value < limit.rlim_max ? value : limit.rlim_max;
    if (resource != RLIMIT_STACK)
        limit.rlim_max = limit.rlim_cur;
    setrlimit(resource, &limit);
}

void endWithoutMemory()
{
    _exit(HelperExitOutOfMemory);
}

/// A fault beside the stack is a stack that is used up; any other takes its usual course.
void endAtFault(int signal, siginfo_t* info, void*)
{
    const auto address = reinterpret_cast<uintptr_t>(info->si_addr);
    if (address >= s_stackBottom && address <= s_stackTop)
        _exit(HelperExitOutOfStack);
    ::signal(signal, SIG_DFL);
    raise(signal);
}

void watchStack(uint64_t size, const void* top)
{
    alignas(16) static char ownStack[64 << 10];
    s_stackTop = reinterpret_cast<uintptr_t>(top);
    s_stackBottom = s_stackTop - size - stackSlack;
    stack_t stack{};
    stack.ss_sp = ownStack;
    stack.ss_size = sizeof ownStack;
    sigaltstack(&stack, nullptr);
    struct sigaction action
    {
    };
    action.sa_sigaction = endAtFault;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    for (int fault : {SIGSEGV, SIGBUS})
        sigaction(fault, &action, nullptr);
}

} // namespace

void limitProcess(const HelperLimits& limits, const void* stackTop)
{
    becomeHelper();
    setLimit(RLIMIT_STACK, limits.stack);
    if (!isInstrumented) { // no `constexpr`: clang would miss uses of what is called here
        setLimit(RLIMIT_AS, limits.memory);
        setLimit(RLIMIT_FSIZE, 0);
        setLimit(RLIMIT_NOFILE, STDERR_FILENO + 1);
        std::set_new_handler(endWithoutMemory);
        watchStack(limits.stack, stackTop);
    }
}

bool hasGrown(const HelperLimits& limits)
{
    const struct mallinfo2 info = mallinfo2();
    return info.arena + info.hblkhd > limits.memory / grownShare;
}

} // namespace helvantine
