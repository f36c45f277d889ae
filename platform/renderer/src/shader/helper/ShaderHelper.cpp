// SPDX-License-Identifier: MIT
#include "shader/helper/ShaderHelper.h"

#include "shader/helper/ShaderJob.h"

#include <signal.h>

#include <algorithm>
#include <iterator>

namespace helvantine
{

namespace
{

constexpr const char* programName = "helvantine-shader-compiler";
constexpr const char* programVariable = "HELVANTINE_SHADER_COMPILER";

/// "5 s", "250 ms".
std::string describeTime(std::chrono::milliseconds time)
{
    const bool isWhole = time.count() % 1000 == 0;
    return isWhole ? std::to_string(time.count() / 1000) + " s" : std::to_string(time.count()) + " ms";
}

/// "1 GiB", "64 MiB".
std::string describeSize(uint64_t bytes)
{
    const uint64_t mebibytes = bytes >> 20;
    return mebibytes % 1024 == 0 ? std::to_string(mebibytes / 1024) + " GiB"
                                 : std::to_string(mebibytes) + " MiB";
}

MessageChannel::Deadline deadlineAfter(std::chrono::milliseconds time)
{
    return MessageChannel::Clock::now() + time;
}

/// Did the process end over what it did? One that was killed from outside, by the system or a user, did not.
bool isOwnFault(const ProcessEnd& end)
{
    if (end.kind == ProcessEnd::Kind::Exited)
        return end.code == HelperExitOutOfMemory || end.code == HelperExitOutOfStack;
    constexpr int faults[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
    return end.kind == ProcessEnd::Kind::Signalled && std::ranges::find(faults, end.code) != std::end(faults);
}

} // namespace

std::string findShaderHelper()
{
    static const char ownMark = 0;
    return findHelper(programName, programVariable, &ownMark);
}

bool ShaderHelper::isAlive() const
{
    if (!m_process.isStarted())
        return false;
    const MessageChannel::State state = m_process.channel().getState();
    return state == MessageChannel::State::Quiet ||
           (state == MessageChannel::State::Pending && !m_hasGreeted);
}

bool ShaderHelper::start(std::string& trouble)
{
    m_hasGreeted = false;
    return m_process.start(m_options.program,
                           {std::to_string(m_options.memoryLimit), std::to_string(m_options.stackLimit)},
                           trouble);
}

bool ShaderHelper::launch(std::string& trouble)
{
    return isAlive() || start(trouble);
}

/// A process that has greeted may have ended since, while nobody listened: another one is started then.
ShaderHelper::Readiness ShaderHelper::makeReady(std::string& trouble)
{
    const Readiness readiness = hearGreeting(trouble);
    return readiness == Readiness::Ready && !isAlive() ? hearGreeting(trouble) : readiness;
}

ShaderHelper::Readiness ShaderHelper::hearGreeting(std::string& trouble)
{
    if (!launch(trouble))
        return Readiness::Refused;
    if (m_hasGreeted)
        return Readiness::Ready;
    std::string greeting;
    const auto received =
        m_process.channel().receive(greeting, maxGreetingSize, deadlineAfter(m_options.startLimit));
    m_hasGreeted = received == MessageChannel::Result::Done && greeting == getHelperGreeting();
    if (m_hasGreeted)
        return Readiness::Ready;
    ProcessEnd end;
    trouble = m_options.program + (received == MessageChannel::Result::Done
                                       ? ": it is of another version"
                                       : ": it " + giveUpOn(received, m_options.startLimit, end));
    stop();
    return Readiness::Useless;
}

ShaderHelper::Outcome ShaderHelper::ask(const std::string& job, std::string& answer, std::string& trouble)
{
    const auto deadline = deadlineAfter(m_options.patience);
    bool isSpent = false;
    auto result = m_process.channel().send(job, deadline);
    if (result == MessageChannel::Result::Done)
        result = awaitAnswer(deadline, isSpent);
    if (result == MessageChannel::Result::Done)
        result = m_process.channel().receive(answer, maxAnswerSize, deadline);
    if (result == MessageChannel::Result::Done)
        return Outcome::Answered;
    ProcessEnd end;
    trouble = giveUpOn(result, isSpent ? m_options.timeLimit : m_options.patience, end);
    return isSpent || isOwnFault(end) ? Outcome::Defeated : Outcome::Failed;
}

/// Processor time is what counts, so that a good text also compiles on a machine that is busy with other things.
/// isSpent: the limit was passed.
MessageChannel::Result ShaderHelper::awaitAnswer(MessageChannel::Deadline deadline, bool& isSpent)
{
    const auto end = m_process.getProcessorTime() + m_options.timeLimit;
    const auto result = m_process.waitForMessage(end, deadline);
    isSpent = result == MessageChannel::Result::TimedOut && m_process.getProcessorTime() >= end;
    return result;
}

void ShaderHelper::stop()
{
    m_process.kill();
}

/// Ends the process and says what it did. end: how it ended by itself, if it did.
std::string ShaderHelper::giveUpOn(MessageChannel::Result result, std::chrono::milliseconds limit,
                                   ProcessEnd& end)
{
    if (result == MessageChannel::Result::Closed) {
        end = m_process.wait();
        return describeEnd(end);
    }
    m_process.kill();
    return result == MessageChannel::Result::TimedOut ? "ran past " + describeTime(limit)
                                                      : "gave an answer without sense";
}

std::string ShaderHelper::describeEnd(const ProcessEnd& end) const
{
    if (end.kind == ProcessEnd::Kind::Signalled)
        return "crashed (signal " + std::to_string(end.code) + ")";
    if (end.kind == ProcessEnd::Kind::Unknown)
        return "ended";
    if (end.code == HelperExitOutOfMemory)
        return "ran out of its memory of " + describeSize(m_options.memoryLimit);
    if (end.code == HelperExitOutOfStack)
        return "ran out of its stack of " + describeSize(m_options.stackLimit);
    return "ended with exit code " + std::to_string(end.code);
}

} // namespace helvantine
