// SPDX-License-Identifier: MIT
#pragma once

#include "ExitCode.h"

#include <cstddef>
#include <set>
#include <string>

namespace helvantine::tool
{

class Progress;

/// Shows what the libraries have reported as warnings on standard error, each once, and at most so many.
class Warnings
{
public:
    explicit Warnings(const std::string& document) : m_document(document) {}

    /// True if the validation layer is among those who spoke. progress may be null.
    bool show(Progress* progress);

private:
    static constexpr std::size_t s_most = 50;
    std::string m_document;
    std::set<std::string> m_shown;
};

/// Says on standard error why the command ends, and returns the code.
int fail(ExitCode code, const std::string& words);

} // namespace helvantine::tool
