// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/HelperProcess.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

namespace helvantine
{

struct ShaderHelperOptions
{
    std::string program;                         ///< path of the executable; empty: no helper is wanted
    std::chrono::milliseconds timeLimit{5000};   ///< of a processor, for one program, both stages
    std::chrono::milliseconds startLimit{10000}; ///< from its start to its greeting
    uint64_t memoryLimit = uint64_t(1) << 30;    ///< bytes of address space
    uint64_t stackLimit = uint64_t(64) << 20;    ///< bytes
    std::chrono::milliseconds patience{20000};   ///< for one program, however little of a processor it gets
};

/// The executable that compiles shaders: what the environment variable HELVANTINE_SHADER_COMPILER names, else
/// `helvantine-shader-compiler` beside this library, else beside this process's executable. Where there is none:
/// the first of the two, for words about what is missing. Empty if the variable is set to nothing.
std::string findShaderHelper();

/// The process that compiles shaders, kept running from job to job.
///
/// It is started when it is first needed and again after each end. A job that it doesn't survive, or that it
/// doesn't finish in time, fails with words; the next one finds a new process.
class ShaderHelper
{
public:
    explicit ShaderHelper(ShaderHelperOptions options) : m_options(std::move(options)) {}

    enum class Readiness
    {
        Ready,
        Refused, ///< the process couldn't be started this time
        Useless  ///< what was started isn't the program that belongs to this library
    };

    /// Starts the process unless it runs, and doesn't wait for it: it gets ready beside this one.
    bool launch(std::string& trouble);

    /// As launch, but waits until it answers.
    Readiness makeReady(std::string& trouble);

    enum class Outcome
    {
        Answered,
        Failed,  ///< for reasons that may pass
        Defeated ///< by the job: it passed a limit or crashed, and would do so again
    };

    /// Hands over a job and waits for the answer. Without one, `trouble` is what the compiler did instead, as the
    /// rest of a sentence: "ran past 5 s". The helper must be ready.
    Outcome ask(const std::string& job, std::string& answer, std::string& trouble);

    /// Ends the process.
    void stop();

private:
    bool isAlive() const;
    MessageChannel::Result awaitAnswer(MessageChannel::Deadline deadline, bool& isSpent);
    bool start(std::string& trouble);
    Readiness hearGreeting(std::string& trouble);
    std::string giveUpOn(MessageChannel::Result result, std::chrono::milliseconds limit, ProcessEnd& end);
    std::string describeEnd(const ProcessEnd& end) const;

    ShaderHelperOptions m_options;
    HelperProcess m_process;
    bool m_hasGreeted = false;
};

} // namespace helvantine
