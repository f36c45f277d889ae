// SPDX-License-Identifier: MIT
#include "shader/ShaderCompiler.h"

#include "shader/ShaderBuilder.h"
#include "shader/helper/ShaderJob.h"

#include <helvantine/core/Report.h>

#include <algorithm>
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
    : m_usesHelper(!options.program.empty()), m_helper(options)
{
}

ShaderCompiler::~ShaderCompiler() = default;

void ShaderCompiler::prepare()
{
    const std::lock_guard lock(m_mutex);
    std::string trouble;
    if (m_usesHelper && !m_helper.launch(trouble))
        reportOnce(trouble);
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
    if (makeReady())
        return buildThere(key, request, encodeShaderJob(request, vertexSource, pixelSource), errors);
    if (!m_builder)
        m_builder = std::make_unique<ShaderBuilder>();
    return m_builder->build(request, vertexSource, pixelSource, errors);
}

/// A start that was refused is tried again for the next program, for what stood in the way may pass.
bool ShaderCompiler::makeReady()
{
    if (!m_usesHelper)
        return false;
    std::string trouble;
    const ShaderHelper::Readiness readiness = m_helper.makeReady(trouble);
    m_usesHelper = readiness != ShaderHelper::Readiness::Useless;
    if (readiness != ShaderHelper::Readiness::Ready)
        reportOnce(trouble);
    return readiness == ShaderHelper::Readiness::Ready;
}

void ShaderCompiler::reportOnce(const std::string& trouble)
{
    if (!std::exchange(m_hasReported, true))
        reportProblem("shader",
                      "texts are compiled in this process, without limits on time and memory: " + trouble);
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
