// SPDX-License-Identifier: MIT
#include "shader/HlslCompiler.h"

#include "shader/ShaderSource.h"
#include "shader/hlsl/Front.h"

#include <shaderc/shaderc.h>

#include <algorithm>
#include <sstream>
#include <utility>

namespace helvantine
{

namespace
{

constexpr uint32_t unorderedAccessBindingBase = 100; ///< outside every range, so that it is found and refused
constexpr size_t maxErrorLines = 64;
constexpr int frontVersion = 2; ///< to be raised when a text may mean something else than before

struct OptionsDeleter
{
    void operator()(shaderc_compile_options_t options) const { shaderc_compile_options_release(options); }
};
using Options = std::unique_ptr<std::remove_pointer_t<shaderc_compile_options_t>, OptionsDeleter>;

struct ResultDeleter
{
    void operator()(shaderc_compilation_result_t result) const { shaderc_result_release(result); }
};
using Result = std::unique_ptr<std::remove_pointer_t<shaderc_compilation_result_t>, ResultDeleter>;

/// Answers the compiler's questions for included texts, out of those that were fetched before.
class IncludeAnswers
{
public:
    explicit IncludeAnswers(const HlslStage& stage) : m_stage(stage) {}

    shaderc_include_result* answer(const char* requested, const char* requesting, size_t depth)
    {
        auto* answer = new Answer;
        std::string path = resolveInclude(requesting == m_stage.name ? "" : requesting, requested);
        auto found = m_stage.includes.find(path);
        if (!m_stage.allowsIncludes)
            answer->content = "includes aren't possible here";
        else if (depth > maxIncludeDepth)
            answer->content = "includes nest deeper than " + std::to_string(maxIncludeDepth);
        else if (++m_count > maxIncludeCount)
            answer->content = "more than " + std::to_string(maxIncludeCount) + " includes";
        else if (found == m_stage.includes.end())
            answer->content = "the file can't be found";
        else {
            answer->name = path;
            answer->content = found->second;
        }
        answer->result = {answer->name.data(), answer->name.size(), answer->content.data(),
                          answer->content.size(), answer};
        return &answer->result;
    }

    static void release(void*, shaderc_include_result* result)
    {
        delete static_cast<Answer*>(result->user_data);
    }

private:
    struct Answer
    {
        std::string name; ///< stays empty on failure
        std::string content;
        shaderc_include_result result{};
    };

    const HlslStage& m_stage;
    size_t m_count = 0;
};

shaderc_include_result* answerInclude(void* answers, const char* requested, int, const char* requesting,
                                      size_t depth)
{
    return static_cast<IncludeAnswers*>(answers)->answer(requested, requesting, depth);
}

void setBindingBases(shaderc_compile_options_t options, ShaderStage stage)
{
    uint32_t constants = stage == ShaderStage::Vertex ? vertexConstantBindingBase : pixelConstantBindingBase;
    const std::pair<shaderc_uniform_kind, uint32_t> bases[] = {
        {shaderc_uniform_kind_buffer, constants},
        {shaderc_uniform_kind_texture, textureBindingBase},
        {shaderc_uniform_kind_storage_buffer, textureBindingBase},
        {shaderc_uniform_kind_sampler, samplerBindingBase},
        {shaderc_uniform_kind_unordered_access_view, unorderedAccessBindingBase},
        {shaderc_uniform_kind_image, unorderedAccessBindingBase},
    };
    for (const auto& [kind, base] : bases)
        shaderc_compile_options_set_binding_base(options, kind, base);
}

Options makeOptions(const HlslStage& stage)
{
    Options options(shaderc_compile_options_initialize());
    shaderc_compile_options_set_source_language(options.get(), shaderc_source_language_hlsl);
    shaderc_compile_options_set_target_env(options.get(), shaderc_target_env_vulkan,
                                           shaderc_env_version_vulkan_1_3);
    // Structured buffers come out in a form that SPIR-V dropped after 1.3.
    shaderc_compile_options_set_target_spirv(options.get(), shaderc_spirv_version_1_3);
    shaderc_compile_options_set_optimization_level(options.get(), shaderc_optimization_level_zero);
    shaderc_compile_options_set_hlsl_functionality1(options.get(), true);
    shaderc_compile_options_set_hlsl_io_mapping(options.get(), true);
    shaderc_compile_options_set_auto_bind_uniforms(options.get(), true);
    shaderc_compile_options_set_nan_clamp(options.get(), true); // min and max prefer what is a number
    setBindingBases(options.get(), stage.stage);
    return options;
}

shaderc_shader_kind kindOf(ShaderStage stage)
{
    return stage == ShaderStage::Vertex ? shaderc_vertex_shader : shaderc_fragment_shader;
}

std::string bytesOf(shaderc_compilation_result_t result)
{
    return {shaderc_result_get_bytes(result), shaderc_result_get_length(result)};
}

bool succeeded(const Result& result)
{
    return result &&
           shaderc_result_get_compilation_status(result.get()) == shaderc_compilation_status_success;
}

/// Does the line start with `name:number:`? The compiler adds summaries that don't.
bool hasPosition(const std::string& line)
{
    size_t mark = std::min({line.find(": error: "), line.find(": warning: "), line.size()});
    size_t digits = line.find_last_not_of("0123456789", mark - 1);
    return mark < line.size() && digits != std::string::npos && line[digits] == ':' && digits + 1 < mark;
}

/// The lines that help an author, as many as can be read at all; empty if none has a position.
std::string keepPositions(const std::string& text)
{
    std::istringstream lines(text);
    std::string kept;
    std::string previous;
    size_t left = maxErrorLines;
    for (std::string line; left > 0 && std::getline(lines, line);)
        if (hasPosition(line) && line != std::exchange(previous, line)) {
            kept += line + "\n";
            --left;
        }
    return kept;
}

/// The first line without what the compiler puts before it.
std::string firstWords(const std::string& text)
{
    constexpr std::string_view mark = "error: ";
    const std::string line = text.substr(0, text.find('\n'));
    const size_t found = line.find(mark);
    return found == std::string::npos ? line : line.substr(found + mark.size());
}

/// Some failures have no position.
std::string describeFailure(const HlslStage& stage, shaderc_compilation_result_t result)
{
    if (!result)
        return stage.name + ":1: error: no compiler\n";
    const std::string text = shaderc_result_get_error_message(result);
    const std::string kept = shaderc_result_get_num_errors(result) != 0 ? keepPositions(text) : "";
    return !kept.empty() ? kept
                         : stage.name + ":1: error: '" + stage.entry +
                               "' can't be compiled: " + firstWords(text) + "\n";
}

} // namespace

struct HlslCompiler::Implementation
{
    shaderc_compiler_t compiler = shaderc_compiler_initialize();
    ~Implementation() { shaderc_compiler_release(compiler); }
};

HlslCompiler::HlslCompiler() : m_implementation(std::make_unique<Implementation>()) {}

HlslCompiler::~HlslCompiler() = default;

/// Macros and includes worked in. False with lines in `errors`.
bool HlslCompiler::preprocess(const HlslStage& stage, std::string& text, std::string& errors)
{
    const Options options(shaderc_compile_options_initialize());
    shaderc_compile_options_set_source_language(options.get(), shaderc_source_language_hlsl);
    for (const auto& [name, value] : stage.macros)
        shaderc_compile_options_add_macro_definition(options.get(), name.data(), name.size(), value.data(),
                                                     value.size());
    IncludeAnswers answers(stage);
    shaderc_compile_options_set_include_callbacks(options.get(), answerInclude, IncludeAnswers::release,
                                                  &answers);
    const Result result(shaderc_compile_into_preprocessed_text(
        m_implementation->compiler, stage.source.data(), stage.source.size(), kindOf(stage.stage),
        stage.name.c_str(), stage.entry.c_str(), options.get()));
    if (!succeeded(result)) {
        errors = describeFailure(stage, result.get());
        return false;
    }
    text = bytesOf(result.get());
    return true;
}

bool HlslCompiler::compile(const HlslStage& stage, std::vector<uint32_t>& words, std::string& errors,
                           std::vector<ShaderWarning>& warnings)
{
    std::string text;
    if (!preprocess(stage, text, errors))
        return false;
    hlsl::Result normal = hlsl::normalise(text, stage.name, stage.entry, stage.stage);
    errors = std::move(normal.errors);
    if (errors.empty() && !normal.hasEntry)
        errors = stage.name + ":1: error: there is no entry point '" + stage.entry + "'\n";
    if (!errors.empty())
        return false;
    warnings = std::move(normal.warnings);
    const Options options = makeOptions(stage);
    const Result result(shaderc_compile_into_spv(m_implementation->compiler, normal.text.data(),
                                                 normal.text.size(), kindOf(stage.stage), stage.name.c_str(),
                                                 stage.entry.c_str(), options.get()));
    if (!succeeded(result)) {
        errors = describeFailure(stage, result.get());
        return false;
    }
    const std::string bytes = bytesOf(result.get());
    words.resize(bytes.size() / sizeof(uint32_t));
    std::copy_n(bytes.data(), words.size() * sizeof(uint32_t), reinterpret_cast<char*>(words.data()));
    return true;
}

std::string HlslCompiler::version()
{
    return HELVANTINE_HLSL_COMPILER " front " + std::to_string(frontVersion);
}

} // namespace helvantine
