// SPDX-License-Identifier: MIT
#pragma once

#include "Progress.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace helvantine::tool
{

/// Says a line on standard error once it has lived for a second: why nothing seems to happen. Where Progress would be
/// quiet, so is this.
class SlowWork
{
public:
    /// line: a string that stays.
    SlowWork(const char* line, Progress::Mode mode);
    ~SlowWork();
    SlowWork(const SlowWork&) = delete;
    SlowWork& operator=(const SlowWork&) = delete;

private:
    std::mutex m_mutex;
    std::condition_variable m_ending;
    bool m_ended = false;
    std::thread m_thread;
};

/// What a warm-up that lasts is busy with.
constexpr const char* slowWarmUp = "making the document's programs ready, which takes the driver a while";

} // namespace helvantine::tool
