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

    Report& report = getReport();
    const std::lock_guard lock(report.mutex);
    const bool repeated = !report.problems.empty() && report.problems.back().text == problem.text &&
                          report.problems.back().module == problem.module;
    if (repeated)
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

} // namespace helvantine
