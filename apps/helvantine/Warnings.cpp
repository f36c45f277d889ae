// SPDX-License-Identifier: MIT
#include "Warnings.h"

#include "Progress.h"

#include <helvantine/core/Report.h>

#include <cstdio>

namespace helvantine::tool
{

bool Warnings::show(Progress* progress)
{
    bool validation = false;
    for (const Problem& problem : takeProblems()) {
        validation |= problem.module == "validation";
        const std::string text = problem.module + ": " + problem.text;
        if (m_shown.size() >= s_most || !m_shown.insert(text).second)
            continue;
        if (progress)
            progress->finish();
        std::fprintf(stderr, "helvantine: warning: %s: %s\n", m_document.c_str(), text.c_str());
        if (m_shown.size() == s_most)
            std::fputs("helvantine: warning: there are more; the rest is left out\n", stderr);
    }
    return validation;
}

int fail(ExitCode code, const std::string& words)
{
    std::fprintf(stderr, "helvantine: %s\n", words.c_str());
    return code;
}

} // namespace helvantine::tool
