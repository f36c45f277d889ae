// SPDX-License-Identifier: MIT
#pragma once

#include "ExitCode.h"
#include "ShaderLog.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>

namespace helvantine::tool
{

class Progress;

/// Shows what is wrong with a document as warnings on standard error, each once, and at most so many: what the
/// libraries have reported, and what the compiler says of shader texts.
class Warnings
{
public:
    explicit Warnings(const std::string& document) : m_document(document) {}

    /// From now on the texts of this document's shader nodes count, too; null before it goes.
    void follow(const Document* document);

    /// What has changed about the shader texts was said by others.
    void passOverShaders();

    /// True if the validation layer is among those who spoke. progress may be null.
    bool show(Progress* progress);

private:
    static constexpr std::size_t s_most = 50;
    void show(const std::string& text, Progress* progress);

    std::string m_document;
    std::optional<ShaderLog> m_shaders;
    std::set<std::string> m_shown;
};

/// Says something on standard error that doesn't end the command.
void warn(const std::string& words);

/// Says on standard error why the command ends, and returns the code.
int fail(ExitCode code, const std::string& words);

} // namespace helvantine::tool
