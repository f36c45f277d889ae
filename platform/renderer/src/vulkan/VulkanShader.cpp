// SPDX-License-Identifier: MIT
#include "vulkan/VulkanShader.h"

#include "shader/ShaderProgramCache.h"
#include "shader/ShaderSource.h"
#include "shader/helper/ShaderHelper.h"
#include "vulkan/DrawRecorder.h"
#include "vulkan/PipelineCache.h"
#include "vulkan/VulkanContext.h"
#include "vulkan/VulkanVertexDeclaration.h"

#include <helvantine/core/Buffer.h>
#include <helvantine/core/FileSystem.h>
#include <helvantine/renderer/ShaderReflection.h>

namespace helvantine
{

namespace
{

/// Compiled programs outlast a renderer, so that the next one needn't compile them. Never destroyed: shaders
/// may be released while the process ends.
ShaderProgramCache& getProgramCache()
{
    static auto& cache = *new ShaderProgramCache(ShaderProgramCache::defaultFolder(), {findShaderHelper()});
    return cache;
}

std::string& getFolder()
{
    static auto& folder = *new std::string(ShaderProgramCache::defaultFolder());
    return folder;
}

/// Reads an included text from the document's files; no other place is looked at.
bool includeFromDocument(const std::string& path, std::string& text)
{
    constexpr uint64_t largestText = uint64_t(16) << 20;
    const std::unique_ptr<Buffer> file(g_fileSystem ? g_fileSystem->openFileInside(path.c_str()) : nullptr);
    std::vector<unsigned char> bytes;
    if (!file || !readRemaining(*file, bytes, largestText))
        return false;
    text.assign(bytes.begin(), bytes.end());
    return true;
}

static_assert(int(ShaderReflection::Kind::VertexInput) == int(ShaderDeclarationKind::VertexInput));

/// Words about a stage that this renderer has no use for; empty if there is none.
std::string refuseStages(const ShaderFromMemoryParams& params)
{
    const std::pair<const char*, bool> stages[] = {
        {"geometry", !params.geometrySource.empty()},
        {"hull", !params.hullSource.empty()},
        {"domain", !params.domainSource.empty()},
    };
    for (const auto& [name, present] : stages) {
        if (present)
            return std::string("shader:1: error: a ") + name + " stage isn't supported";
    }
    return {};
}

ShaderRequest makeRequest(const ShaderFromMemoryParams& params)
{
    ShaderRequest request;
    request.vertexSource = params.vertexSource;
    request.vertexEntry = params.vertexEntry;
    request.pixelSource = params.pixelSource;
    request.pixelEntry = params.pixelEntry;
    request.macros = params.macros;
    request.includer = includeFromDocument;
    return request;
}

/// Null on failure, with words in errorText.
ShaderProgramPtr compile(ShaderFromMemoryParams& params)
{
    params.errorText = refuseStages(params);
    if (!params.errorText.empty())
        return nullptr;
    const ShaderRequest request = makeRequest(params);
    ShaderProgramPtr compiled = getProgramCache().get(request, params.errorText);
    params.warningText.clear();
    if (compiled) {
        params.errorText.clear();
        params.warningText = compiled->describeWarnings(request.name);
    }
    return compiled;
}

class CachedCompilation final : public ShaderCompilation
{
public:
    explicit CachedCompilation(const ShaderFromMemoryParams& params)
    {
        m_pending.errors = refuseStages(params);
        if (m_pending.errors.empty())
            getProgramCache().begin(makeRequest(params), m_pending);
    }

    bool isDone() override
    {
        const bool isDone = getProgramCache().isFinished(m_pending);
        if (isDone && m_pending.program)
            m_warnings = m_pending.program->describeWarnings(ShaderRequest().name);
        return isDone;
    }
    const std::string& getErrorText() const override { return m_pending.errors; }
    const std::string& getWarningText() const override { return m_warnings; }

private:
    std::string m_warnings;
    ShaderProgramCache::Pending m_pending;
};

} // namespace

VulkanShader::VulkanShader(VulkanContext& context, std::shared_ptr<const VulkanProgram> program)
    : GpuObject(context), m_program(std::move(program))
{
}

void VulkanShader::bind(VertexDeclaration* declaration)
{
    if (getContext())
        getContext()->draws().setShader(this, static_cast<VulkanVertexDeclaration*>(declaration));
}

void VulkanShader::unbind()
{
    if (getContext())
        getContext()->draws().setShader(nullptr, nullptr);
}

Shader* createShaderFromMemory(ShaderFromMemoryParams& params)
{
    VulkanContext* context = VulkanContext::getCurrent();
    if (!context) {
        params.errorText = "shader:1: error: there is no renderer";
        return nullptr;
    }
    const ShaderProgramPtr compiled = compile(params);
    if (!compiled)
        return nullptr;
    auto program = context->pipelines().getProgram(compiled);
    if (program)
        return new VulkanShader(*context, std::move(program));
    params.errorText = "shader:1: error: the device refuses the program";
    return nullptr;
}

bool checkShader(ShaderFromMemoryParams& params)
{
    return compile(params) != nullptr;
}

bool reflectShader(ShaderFromMemoryParams& params, ShaderReflection& reflection)
{
    reflection.entries.clear();
    const ShaderProgramPtr program = compile(params);
    if (!program)
        return false;
    for (const ShaderDeclaration& one : program->declarations)
        reflection.entries.push_back({ShaderReflection::Kind(one.kind), one.number,
                                      (one.stages & vertexStageBit) != 0, (one.stages & pixelStageBit) != 0,
                                      one.name, one.line});
    return true;
}

std::string ShaderReflection::Entry::getPlace() const
{
    static const char* const letters[] = {"b", "t", "s", "t"};
    return (kind == Kind::VertexInput ? name : letters[int(kind)]) + std::to_string(number);
}

std::unique_ptr<ShaderCompilation> beginShaderCompilation(const ShaderFromMemoryParams& params)
{
    return std::make_unique<CachedCompilation>(params);
}

std::set<std::string> findShaderIncludes(const ShaderFromMemoryParams& params)
{
    std::set<std::string> paths;
    const ShaderIncluder includer = [&paths](const std::string& path, std::string& text) {
        paths.insert(path);
        return includeFromDocument(path, text);
    };
    ShaderSource source;
    std::string errors;
    for (const std::string* text : {&params.vertexSource, &params.pixelSource})
        loadShaderSource("", *text, params.macros, includer, source, errors);
    return paths;
}

void prepareShaderCompiler()
{
    getProgramCache().prepare();
}

const std::string& getShaderCacheFolder()
{
    return getFolder();
}

void setShaderCacheFolder(const char* folder)
{
    getFolder() = folder ? folder : "";
    getProgramCache().setFolder(getFolder());
}

} // namespace helvantine
