// SPDX-License-Identifier: MIT
#include "shader/ShaderCompiler.h"

#include "shader/ShaderBuilder.h"
#include "shader/helper/ShaderJob.h"

#include <helvantine/core/Report.h>

#include <utility>

namespace helvantine
{

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

ShaderProgramPtr ShaderCompiler::build(const ShaderRequest& request, const ShaderSource& vertexSource,
                                       const ShaderSource& pixelSource, std::string& errors)
{
    const std::lock_guard lock(m_mutex);
    if (makeReady())
        return buildThere(request, encodeShaderJob(request, vertexSource, pixelSource), errors);
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

ShaderProgramPtr ShaderCompiler::buildThere(const ShaderRequest& request, const std::string& job,
                                            std::string& errors)
{
    const std::string position = request.name + ":1: error: ";
    if (job.size() > maxJobSize) {
        errors = position + "texts, names and macros have " + std::to_string(job.size()) +
                 " bytes, more than " + std::to_string(maxJobSize) + "\n";
        return nullptr;
    }
    std::string bytes;
    std::string trouble;
    ShaderAnswer answer;
    const bool answered = m_helper.ask(job, bytes, trouble);
    const bool makesSense = answered && decodeShaderAnswer(bytes, answer);
    if (answered && (!makesSense || answer.hasGrown))
        m_helper.stop();
    if (!makesSense)
        answer.errors =
            position + "the shader compiler " + (answered ? "gave an answer without sense" : trouble) + "\n";
    errors = answer.errors;
    return answer.program;
}

} // namespace helvantine
