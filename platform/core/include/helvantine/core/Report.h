// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>

#include <string>
#include <vector>

namespace helvantine
{

/// One failure in words. Shown to a person as `module: text`.
struct Problem
{
    std::string module; ///< the part that failed, one lower-case word such as "zip" or "script"
    std::string text;   ///< what happened, to which file, with the numbers; without the module
};

/// Notes a failure for the host. The call that failed still answers with null or false.
///
/// The report keeps the latest 256 problems and the first 16 KiB of each text, and a problem that
/// equals the one before it is noted once, so a caller that fails every frame costs nothing more.
/// A text that starts with `module: ` is stored without it. May be called from any thread.
HELVANTINE_CORE_API void reportProblem(const char* module, const std::string& text);

/// Hands over what was reported since the last call, oldest first, and forgets it.
HELVANTINE_CORE_API std::vector<Problem> takeProblems();

/// While it lives, what its thread reports comes here instead, for an operation that has one thing to say of several
/// failures. What isn't taken is reported at its end. Captures nest.
class HELVANTINE_CORE_API ProblemCapture
{
public:
    ProblemCapture();
    ~ProblemCapture();
    ProblemCapture(const ProblemCapture&) = delete;
    ProblemCapture& operator=(const ProblemCapture&) = delete;

    /// As takeProblems does for the report.
    std::vector<Problem> take();

private:
    friend HELVANTINE_CORE_API void reportProblem(const char*, const std::string&);

    ProblemCapture* m_outer;
    std::vector<Problem> m_problems;
};

} // namespace helvantine
