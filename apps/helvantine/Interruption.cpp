// SPDX-License-Identifier: MIT
#include "Interruption.h"

#include <csignal>
#include <initializer_list>

namespace helvantine::tool
{

namespace
{

volatile std::sig_atomic_t g_interrupted = 0;

} // namespace

void watchInterruption()
{
    for (const int number : {SIGINT, SIGTERM}) {
        std::signal(number, [](int caught) {
            g_interrupted = 1;
            std::signal(caught, SIG_DFL);
        });
    }
}

bool isInterrupted()
{
    return g_interrupted != 0;
}

} // namespace helvantine::tool
