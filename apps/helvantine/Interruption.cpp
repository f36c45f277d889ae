// SPDX-License-Identifier: MIT
#include "Interruption.h"

#include "ScratchFolder.h"

#include <csignal>

namespace helvantine::tool
{

namespace
{

volatile std::sig_atomic_t g_interrupted = 0;

/// Those that ask a program to end.
constexpr int endings[] = {SIGINT, SIGTERM, SIGHUP};

extern "C" void endByAnother(int number)
{
    ScratchFolder::removeAllFromSignal();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

extern "C" void noteInterruption(int number)
{
    g_interrupted = 1;
    std::signal(number, endByAnother);
}

/// Who starts a program with a signal ignored, as nohup does, wants it so.
void setHandler(void (*handler)(int))
{
    for (const int number : endings) {
        if (std::signal(number, handler) == SIG_IGN)
            std::signal(number, SIG_IGN);
    }
}

} // namespace

void prepareSignals()
{
    setHandler(endByAnother);
    std::signal(SIGPIPE, SIG_IGN);
}

void watchInterruption()
{
    setHandler(noteInterruption);
}

bool isInterrupted()
{
    return g_interrupted != 0;
}

} // namespace helvantine::tool
