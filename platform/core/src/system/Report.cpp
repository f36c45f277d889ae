// SPDX-License-Identifier: MIT
#include <helvantine/core/Report.h>

#include <deque>
#include <iterator>
#include <mutex>
#include <string_view>
#include <utility>

namespace helvantine
{

namespace
{

constexpr std::size_t problemLimit = 256;
constexpr std::size_t textLimit = 16384;

struct Report
{
    std::mutex mutex;
    std::deque<Problem> problems;
};

thread_local ProblemCapture* s_capture = nullptr;

bool isSame(const Problem& a, const Problem& b)
{
    return a.text == b.text && a.module == b.module;
}

/// Never destroyed: objects with static lifetime may still report while the process ends.
Report& getReport()
{
    static Report* const report = new Report;
    return *report;
}

std::string_view withoutModule(std::string_view module, std::string_view text)
{
    const bool named = text.starts_with(module) && text.substr(module.size()).starts_with(": ");
    return named ? text.substr(module.size() + 2) : text;
}

/// Cuts between characters, never inside the bytes of one.
std::string_view cutText(std::string_view text)
{
    if (text.size() <= textLimit)
        return text;
    std::size_t end = textLimit;
    while (end > textLimit - 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

} // namespace

void reportProblem(const char* module, const std::string& text)
{
    Problem problem{module ? module : "", {}};
    problem.text = cutText(withoutModule(problem.module, text));

    if (s_capture) {
        std::vector<Problem>& captured = s_capture->m_problems;
        if (captured.size() < problemLimit && (captured.empty() || !isSame(captured.back(), problem)))
            captured.push_back(std::move(problem));
        return;
    }

    Report& report = getReport();
    const std::lock_guard lock(report.mutex);
    if (!report.problems.empty() && isSame(report.problems.back(), problem))
        return;
    if (report.problems.size() == problemLimit)
        report.problems.pop_front();
    report.problems.push_back(std::move(problem));
}

std::vector<Problem> takeProblems()
{
    Report& report = getReport();
    const std::lock_guard lock(report.mutex);
    std::vector<Problem> taken(std::move_iterator(report.problems.begin()),
                               std::move_iterator(report.problems.end()));
    report.problems.clear();
    return taken;
}

ProblemCapture::ProblemCapture() : m_outer(s_capture)
{
    s_capture = this;
}

ProblemCapture::~ProblemCapture()
{
    s_capture = m_outer;
    for (const Problem& problem : m_problems)
        reportProblem(problem.module.c_str(), problem.text);
}

std::vector<Problem> ProblemCapture::take()
{
    return std::exchange(m_problems, {});
}

} // namespace helvantine
