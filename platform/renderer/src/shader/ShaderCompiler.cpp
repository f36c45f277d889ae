// SPDX-License-Identifier: MIT
#include "shader/ShaderCompiler.h"

#include "shader/ShaderBuilder.h"
#include "shader/helper/ShaderJob.h"

#include <helvantine/core/Report.h>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace helvantine
{

namespace
{

std::string describeTrouble(const ShaderRequest& request, const std::string& trouble)
{
    return request.name + ":1: error: the shader compiler " + trouble + "\n";
}

} // namespace

ShaderCompiler::ShaderCompiler(const ShaderHelperOptions& options)
    : m_program(options.program), m_helper(options)
{
}

ShaderCompiler::~ShaderCompiler() = default;

void ShaderCompiler::prepare()
{
    const std::lock_guard lock(m_mutex);
    std::string trouble;
    if (!m_program.empty() && !m_helper.launch(trouble))
        reportOnce(trouble);
}

void ShaderCompiler::checkProgram()
{
    const std::lock_guard lock(m_mutex);
    if (!m_program.empty() && access(m_program.c_str(), X_OK) != 0)
        reportOnce(m_program + ": " + std::generic_category().message(errno));
}

ShaderProgramPtr ShaderCompiler::build(const Hash128& key, const ShaderRequest& request,
                                       const ShaderSource& vertexSource, const ShaderSource& pixelSource,
                                       std::string& errors)
{
    const std::lock_guard lock(m_mutex);
    if (const std::string* trouble = findDefeat(key)) {
        errors = describeTrouble(request, *trouble);
        return nullptr;
    }
    if (m_program.empty()) {
        if (!m_builder)
            m_builder = std::make_unique<ShaderBuilder>();
        return m_builder->build(request, vertexSource, pixelSource, errors);
    }
    std::string trouble;
    if (makeReady(trouble))
        return buildThere(key, request, encodeShaderJob(request, vertexSource, pixelSource), errors);
    errors = describeTrouble(request, "can't be used: " + trouble);
    return nullptr;
}

/// A start that was refused is tried again for the next program, for what stood in the way may pass.
bool ShaderCompiler::makeReady(std::string& trouble)
{
    trouble = m_useless;
    if (!trouble.empty())
        return false;
    const ShaderHelper::Readiness readiness = m_helper.makeReady(trouble);
    if (readiness == ShaderHelper::Readiness::Useless)
        m_useless = trouble;
    if (readiness != ShaderHelper::Readiness::Ready)
        reportOnce(trouble);
    return readiness == ShaderHelper::Readiness::Ready;
}

void ShaderCompiler::reportOnce(const std::string& trouble)
{
    if (!std::exchange(m_hasReported, true))
        reportProblem("shader",
                      "texts can't be compiled, which takes a program beside Helvantine.Renderer.dll: " +
                          trouble);
}

ShaderProgramPtr ShaderCompiler::buildThere(const Hash128& key, const ShaderRequest& request,
                                            const std::string& job, std::string& errors)
{
    if (job.size() > maxJobSize) {
        errors = request.name + ":1: error: texts, names and macros have " + std::to_string(job.size()) +
                 " bytes, more than " + std::to_string(maxJobSize) + "\n";
        return nullptr;
    }
    std::string bytes;
    std::string trouble;
    ShaderAnswer answer;
    const ShaderHelper::Outcome outcome = m_helper.ask(job, bytes, trouble);
    if (outcome == ShaderHelper::Outcome::Defeated)
        rememberDefeat(key, trouble);
    const bool answered = outcome == ShaderHelper::Outcome::Answered;
    const bool makesSense = answered && decodeShaderAnswer(bytes, answer);
    if (answered && (!makesSense || answer.hasGrown))
        m_helper.stop();
    if (!makesSense)
        answer.errors = describeTrouble(request, answered ? "gave an answer without sense" : trouble);
    errors = answer.errors;
    return answer.program;
}

/// Null if the process has not yet been defeated by it.
const std::string* ShaderCompiler::findDefeat(const Hash128& key) const
{
    const auto found = std::ranges::find(m_defeats, key, &std::pair<Hash128, std::string>::first);
    return found != m_defeats.end() ? &found->second : nullptr;
}

void ShaderCompiler::rememberDefeat(const Hash128& key, const std::string& trouble)
{
    if (m_defeats.size() == s_defeatCount)
        m_defeats.pop_front();
    m_defeats.emplace_back(key, trouble);
}

} // namespace helvantine
