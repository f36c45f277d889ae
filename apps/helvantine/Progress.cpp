// SPDX-License-Identifier: MIT
#include "Progress.h"

#include <helvantine/core/System.h>

#include <cstdio>
#include <unistd.h>

namespace helvantine::tool
{

namespace
{

constexpr double terminalInterval = 0.2; // seconds
constexpr double lineInterval = 2.0;

} // namespace

Progress::Mode Progress::chooseMode(bool wanted)
{
    if (isatty(STDERR_FILENO))
        return Mode::Terminal;
    return wanted ? Mode::Lines : Mode::Quiet;
}

Progress::Progress(Mode mode, int total)
    : m_mode(mode), m_total(total), m_started(getTime()), m_shown(m_started)
{
}

void Progress::show(int done)
{
    const double now = getTime();
    if (m_mode == Mode::Quiet || now - m_shown < (m_mode == Mode::Terminal ? terminalInterval : lineInterval))
        return;
    m_shown = now;
    const double rate = done / (now - m_started);
    std::fprintf(stderr, "%sframe %d of %d, %.1f frames per second, %.0f s left%s",
                 m_mode == Mode::Terminal ? "\r" : "", done, m_total, rate, (m_total - done) / rate,
                 m_mode == Mode::Terminal ? "\033[K" : "\n");
    std::fflush(stderr);
    m_lineOpen = m_mode == Mode::Terminal;
}

void Progress::finish()
{
    if (m_lineOpen)
        std::fputs("\r\033[K", stderr);
    m_lineOpen = false;
}

} // namespace helvantine::tool
