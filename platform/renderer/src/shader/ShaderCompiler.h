// SPDX-License-Identifier: MIT
#pragma once

#include "shader/Hash128.h"
#include "shader/ShaderProgram.h"
#include "shader/ShaderRequest.h"
#include "shader/ShaderSource.h"
#include "shader/helper/ShaderHelper.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace helvantine
{

class ShaderBuilder;

/// Builds programs out of any text, good or bad, and comes back.
///
/// The work is done in a process of its own, which may crash, hang or eat memory without harm to this one; the
/// failure then says what happened. Where that process can't be started, which is reported once, no text is
/// compiled: a bad one would end this process. Options that name no program are the caller's word that its texts
/// are good; then programs are built in this process.
///
/// What passed a limit or crashed the process isn't tried again: the same words come back at once. The latest
/// s_defeatCount of such texts are remembered, for as long as this object lives.
///
/// Several threads may call it; they wait for each other.
class ShaderCompiler
{
public:
    explicit ShaderCompiler(const ShaderHelperOptions& options);
    ~ShaderCompiler();

    /// Starts the process, without waiting for it.
    void prepare();
    /// Reports a program that isn't there, which else shows with the first text that has to be compiled.
    void checkProgram();

    /// Null on failure, with lines of the form `name:line: error: …` in `errors`. The sources are those of the
    /// request, loaded; the key is that of all that the program depends on.
    ShaderProgramPtr build(const Hash128& key, const ShaderRequest& request, const ShaderSource& vertexSource,
                           const ShaderSource& pixelSource, std::string& errors);

private:
    static constexpr size_t s_defeatCount = 256;

    bool makeReady(std::string& trouble);
    void reportOnce(const std::string& trouble);
    ShaderProgramPtr buildThere(const Hash128& key, const ShaderRequest& request, const std::string& job,
                                std::string& errors);
    const std::string* findDefeat(const Hash128& key) const;
    void rememberDefeat(const Hash128& key, const std::string& trouble);

    std::mutex m_mutex;    ///< over all that follows
    std::string m_program; ///< empty: programs are built in this process
    bool m_hasReported = false;
    std::string m_useless; ///< why the program is of no use; empty: it may be
    ShaderHelper m_helper;
    std::deque<std::pair<Hash128, std::string>> m_defeats; ///< what the process did over a text, oldest first
    std::unique_ptr<ShaderBuilder> m_builder;              ///< made when a program is built in this process
};

} // namespace helvantine
