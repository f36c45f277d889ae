// SPDX-License-Identifier: MIT
#include "plugin/PluginTrial.h"

#include <helvantine/core/HelperProcess.h>
#include <helvantine/core/Text.h>

namespace helvantine
{

namespace
{

using Clock = MessageChannel::Clock;
using Result = MessageChannel::Result;
using Kind = PluginVerdict::Kind;

constexpr std::size_t s_largestMessage = 65536; ///< bytes
constexpr int s_killed = 9; ///< the signal by which a system out of memory ends processes, too

/// One library's time in the other process.
class Trial
{
public:
    Trial(const PluginTrialOptions& options, const std::string& library)
        : m_options(options), m_library(library)
    {
    }

    PluginVerdict run();

private:
    bool start();
    Result hear(std::string& message);
    bool take(const std::string& message);
    void judgeEnd(Result result);
    void giveUp(const std::string& why, bool holds);
    std::string describeTimeout() const;

    const PluginTrialOptions& m_options;
    const std::string& m_library;
    HelperProcess m_process;
    MessageChannel::Deadline m_deadline;
    std::string m_step;
    bool m_isJudged = false;
    PluginVerdict m_verdict;
};

PluginVerdict Trial::run()
{
    if (!start())
        return m_verdict;
    for (;;) {
        std::string message;
        const Result result = hear(message);
        if (result != Result::Done) {
            judgeEnd(result);
            return m_verdict;
        }
        if (!take(message)) {
            giveUp("gave an answer without sense", true);
            return m_verdict;
        }
    }
}

bool Trial::start()
{
    m_deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                    std::chrono::duration<double>(m_options.patience));
    std::string error, greeting;
    if (m_process.start(m_options.program, {m_library}, error)) {
        if (hear(greeting) == Result::Done && greeting == std::string(1, TrialGreeting) + pluginTrialGreeting)
            return true;
        error = m_options.program + " doesn't answer as it should";
    }
    m_verdict = {Kind::Unknown, {error}, false};
    return false;
}

Result Trial::hear(std::string& message)
{
    const auto limit = std::chrono::nanoseconds(static_cast<std::int64_t>(m_options.processorLimit * 1e9));
    const Result result = m_process.waitForMessage(limit, m_deadline);
    return result == Result::Done ? m_process.channel().receive(message, s_largestMessage, m_deadline)
                                  : result;
}

/// False for a message that makes no sense.
bool Trial::take(const std::string& message)
{
    const char letter = message.empty() ? '\0' : message[0];
    switch (letter) {
    case TrialStep:
        m_step = message.substr(1);
        return true;
    case TrialProblem:
        m_verdict.problems.push_back(message.substr(1));
        return true;
    case TrialAccepted:
        m_verdict.kind = Kind::Accepted;
        break;
    case TrialRefused:
        m_verdict.kind = Kind::Refused;
        break;
    case TrialForeign:
        m_verdict.kind = Kind::Foreign;
        break;
    case TrialUnloadable:
        // The loader tells this process as well, and what it misses may be there the next time.
        m_verdict = {Kind::Accepted, {}, false};
        break;
    default:
        return false;
    }
    m_isJudged = true;
    m_step = "the program ended";
    return true;
}

/// The process is gone, or has to go.
void Trial::judgeEnd(Result result)
{
    if (result == Result::TimedOut) {
        giveUp(describeTimeout(), true);
        return;
    }
    const ProcessEnd end = m_process.wait();
    if (end.kind == ProcessEnd::Kind::Signalled)
        giveUp("crashed (signal " + std::to_string(end.code) + ")", end.code != s_killed);
    else if (!m_isJudged)
        giveUp("ended the program with exit code " + std::to_string(end.code), true);
}

std::string Trial::describeTimeout() const
{
    const auto spent = std::chrono::duration<double>(m_process.getProcessorTime()).count();
    return spent >= m_options.processorLimit
               ? formatString("took more than %g s of a processor", m_options.processorLimit)
               : formatString("took more than %g s", m_options.patience);
}

void Trial::giveUp(const std::string& why, bool holds)
{
    m_process.kill();
    m_verdict.kind = Kind::Refused;
    m_verdict.holds = holds;
    m_verdict.problems.push_back(m_library + ": isn't loaded, since in a trial it " + why + " while " +
                                 m_step);
}

} // namespace

PluginVerdict tryPlugin(const PluginTrialOptions& options, const std::string& library)
{
    return Trial(options, library).run();
}

} // namespace helvantine
