// SPDX-License-Identifier: MIT
#include "SlowWork.h"

#include <chrono>
#include <cstdio>
#include <system_error>

namespace helvantine::tool
{

SlowWork::SlowWork(const char* line, Progress::Mode mode)
{
    if (mode == Progress::Mode::Quiet)
        return;
    const auto wait = [this, line] {
        std::unique_lock lock(m_mutex);
        if (!m_ending.wait_for(lock, std::chrono::seconds(1), [this] { return m_ended; }))
            std::fprintf(stderr, "%s\n", line);
    };
    try {
        m_thread = std::thread(wait);
    } catch (const std::system_error&) { // no thread can be had: nothing is said
    }
}

SlowWork::~SlowWork()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ended = true;
    }
    m_ending.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

} // namespace helvantine::tool
