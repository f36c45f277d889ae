// SPDX-License-Identifier: MIT
#include "Warnings.h"

#include "Progress.h"

#include <helvantine/core/Report.h>

#include <cstdio>

namespace helvantine::tool
{

void Warnings::follow(const Document* document)
{
    m_shaders.reset();
    if (document)
        m_shaders.emplace(*document);
}

bool Warnings::show(Progress* progress)
{
    bool validation = false;
    for (const Problem& problem : takeProblems()) {
        validation |= problem.module == "validation";
        show(problem.module + ": " + problem.text, progress);
    }
    for (const std::string& line : m_shaders ? m_shaders->takeNews() : std::vector<std::string>())
        show(line, progress);
    return validation;
}

void Warnings::passOverShaders()
{
    if (m_shaders)
        m_shaders->takeNews();
}

void Warnings::show(const std::string& text, Progress* progress)
{
    if (m_shown.size() >= s_most || !m_shown.insert(text).second)
        return;
    if (progress)
        progress->finish();
    std::fprintf(stderr, "helvantine: warning: %s: %s\n", m_document.c_str(), text.c_str());
    if (m_shown.size() == s_most)
        std::fputs("helvantine: warning: there are more; the rest is left out\n", stderr);
}

void warn(const std::string& words)
{
    std::fprintf(stderr, "helvantine: warning: %s\n", words.c_str());
}

int fail(ExitCode code, const std::string& words)
{
    std::fprintf(stderr, "helvantine: %s\n", words.c_str());
    return code;
}

} // namespace helvantine::tool
