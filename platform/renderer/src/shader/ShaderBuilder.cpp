// SPDX-License-Identifier: MIT
#include "shader/ShaderBuilder.h"

#include "shader/HlslScanner.h"
#include "shader/SpirvComparison.h"
#include "shader/SpirvInterface.h"
#include "shader/SpirvLayout.h"
#include "shader/SpirvNumbers.h"
#include "shader/SpirvPasses.h"
#include "shader/SpirvRegisters.h"
#include "shader/SpirvSamplers.h"
#include "shader/SpirvSystemValues.h"
#include "shader/SpirvValidator.h"
#include "shader/hlsl/Names.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <tuple>

namespace helvantine
{

namespace
{

constexpr int builderVersion = 13; ///< to be raised when a repair or what is read from a module changes

/// What the renderer asks of every device; a module that needs more is refused.
constexpr spv::Capability allowedCapabilities[] = {
    spv::Capability::Matrix,
    spv::Capability::Shader,
    spv::Capability::Sampled1D,
    spv::Capability::SampledCubeArray,
    spv::Capability::ImageQuery,
    spv::Capability::DerivativeControl,
    spv::Capability::ClipDistance,
    spv::Capability::CullDistance,
    spv::Capability::SampleRateShading,
    spv::Capability::InterpolationFunction,
    spv::Capability::ImageGatherExtended,
    spv::Capability::DrawParameters,
    spv::Capability::Geometry, // SV_PrimitiveID
};

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

/// The line where the text first names what a message quotes; 1 if it doesn't.
uint32_t lineOf(const ShaderSource& source, const std::string& message)
{
    size_t open = message.find('\'');
    size_t close = message.find('\'', open + 1);
    if (open == std::string::npos || close == std::string::npos)
        return 1;
    std::string_view quoted = std::string_view(message).substr(open + 1, close - open - 1);
    quoted = quoted.substr(0, quoted.find('[')); // of an element, the array
    uint32_t line = 0;
    for (const HlslToken& token : scanHlsl(source.text)) {
        if (token.text == quoted)
            return token.line;
        // A semantic without a number has index 0, and messages show it.
        if (line == 0 && (equalsIgnoringCase(token.text, quoted) ||
                          equalsIgnoringCase(std::string(token.text) + "0", quoted)))
            line = token.line;
    }
    return std::max(line, 1u);
}

/// Puts name and line before each of the bare messages.
std::string locate(const std::string& name, const ShaderSource& source, const std::string& messages)
{
    std::istringstream lines(messages);
    std::string located;
    for (std::string line; std::getline(lines, line);) {
        line = hlsl::translateNames(line);
        located += name + ":" + std::to_string(lineOf(source, line)) + ": error: " + line + "\n";
    }
    return located;
}

std::string unsupportedCapabilities(const SpirvModule& module)
{
    std::string words;
    for (const SpirvInstruction& one : module.instructions) {
        bool allowed = std::count(std::begin(allowedCapabilities), std::end(allowedCapabilities),
                                  spv::Capability(one.operand(0)));
        if (one.op == spv::Op::OpCapability && !allowed)
            words += "the shader needs SPIR-V capability " + std::to_string(one.operand(0)) +
                     ", which isn't supported\n";
    }
    return words;
}

/// The array that the text declares with so many elements, for modules don't keep names of variables; empty if none.
std::string_view findArray(const ShaderSource& source, uint64_t size)
{
    const std::vector<HlslToken> tokens = scanHlsl(source.text);
    for (size_t i = 0; i + 3 < tokens.size(); ++i)
        if (tokens[i + 1].text == "[" && tokens[i + 3].text == "]" &&
            tokens[i + 2].text == std::to_string(size))
            return tokens[i].text;
    return {};
}

std::string refuseLargeArrays(const SpirvModule& module, const ShaderSource& source)
{
    const ArrayRegisters arrays = countArrayRegisters(module);
    if (std::max(arrays.all, arrays.largest) <= arrayRegisterLimit)
        return {};
    const std::string_view name = findArray(source, arrays.largestSize);
    const std::string largest =
        name.empty() ? "an array of " + std::to_string(arrays.largestSize) : "'" + std::string(name) + "'";
    return largest + " takes " + std::to_string(arrays.largest) +
           " registers of four components, all arrays take " + std::to_string(arrays.all) + "; a stage has " +
           std::to_string(arrayRegisterLimit) + "\n";
}

std::string registerName(const ShaderBinding& binding)
{
    static const char letters[] = {'b', 't', 's', 't'};
    return letters[size_t(binding.kind)] + std::to_string(binding.slot);
}

/// Two uses of one register are one binding if they agree. A constant buffer has a register for itself, and a sampler
/// either compares or reads.
void addBinding(std::vector<ShaderBinding>& bindings, const ShaderBinding& added, std::string& errors)
{
    for (ShaderBinding& binding : bindings) {
        if (binding.binding != added.binding)
            continue;
        const bool isSampler = binding.kind == ShaderBindingKind::Sampler;
        if (binding.kind != added.kind || binding.dimension != added.dimension ||
            binding.component != added.component || binding.kind == ShaderBindingKind::ConstantBuffer ||
            (isSampler && binding.comparison != added.comparison))
            errors += "register " + registerName(added) + " is used for two different resources\n";
        binding.stages |= added.stages;
        binding.comparison |= added.comparison;
        binding.textures |= added.textures;
        return;
    }
    bindings.push_back(added);
}

/// Samplers that were separated are declared once.
void addDeclaration(std::vector<ShaderDeclaration>& declarations, const ShaderDeclaration& added)
{
    for (ShaderDeclaration& one : declarations) {
        ShaderDeclaration same = added;
        same.stages = one.stages;
        if (one == same) {
            one.stages |= added.stages;
            return;
        }
    }
    declarations.push_back(added);
}

/// Reads what one stage takes out of its slots.
void addBindings(const SpirvModule& module, ShaderStage stage, const std::set<uint32_t>& separatedSamplers,
                 const ShaderSource& source, ShaderProgram& program, std::string& errors)
{
    static_assert(int(ShaderDeclarationKind::StructuredBuffer) == int(ShaderBindingKind::StructuredBuffer));
    for (const NamedBinding& one : readBindings(module, stage, separatedSamplers, errors)) {
        addBinding(program.bindings, one.binding, errors);
        addDeclaration(program.declarations,
                       {ShaderDeclarationKind(one.binding.kind), one.binding.stages, one.binding.slot,
                        one.name, lineOf(source, "'" + one.name + "'")});
    }
}

std::vector<ShaderVertexInput> readVertexInputs(const SpirvModule& vertex, std::string& errors)
{
    std::vector<ShaderVertexInput> inputs;
    for (const StageVariable& variable : readStageVariables(vertex, spv::StorageClass::Input, errors))
        for (uint32_t row = 0; row < variable.rows; ++row)
            inputs.push_back({variable.semantic, variable.index + row, variable.location + row,
                              variable.component, variable.componentCount});
    return inputs;
}

Hash128 hashOf(const ShaderProgram& program)
{
    Hasher128 hasher;
    for (const std::vector<uint32_t>* words : {&program.vertexWords, &program.pixelWords}) {
        hasher.add(uint32_t(words->size()));
        for (uint32_t word : *words)
            hasher.add(word);
    }
    hasher.add(program.vertexEntry);
    hasher.add(program.pixelEntry);
    for (const ShaderVertexInput& input : program.vertexInputs) { // the modules no longer name them
        hasher.add(input.semantic);
        hasher.add(input.index);
    }
    return hasher.finish();
}

/// Links the stages and reads what they take and give. False with located errors.
bool link(const ShaderRequest& request, const ShaderSource& vertexSource, const ShaderSource& pixelSource,
          SpirvModule& vertex, SpirvModule& pixel, ShaderProgram& program, std::string& errors)
{
    std::string vertexErrors = unsupportedCapabilities(vertex) + refuseLargeArrays(vertex, vertexSource);
    std::string pixelErrors = unsupportedCapabilities(pixel) + refuseLargeArrays(pixel, pixelSource);
    const SeparatedSamplers separated = separateSamplers(vertex, pixel);
    addBindings(vertex, ShaderStage::Vertex, separated.vertex, vertexSource, program, vertexErrors);
    addBindings(pixel, ShaderStage::Pixel, separated.pixel, pixelSource, program, pixelErrors);
    std::sort(program.bindings.begin(), program.bindings.end(),
              [](const auto& a, const auto& b) { return a.binding < b.binding; });
    program.vertexInputs = readVertexInputs(vertex, vertexErrors);
    for (const ShaderVertexInput& input : program.vertexInputs)
        program.declarations.push_back(
            {ShaderDeclarationKind::VertexInput, vertexStageBit, input.index, input.semantic,
             lineOf(vertexSource, "'" + input.semantic + std::to_string(input.index) + "'")});
    linkPixelStage(readStageVariables(vertex, spv::StorageClass::Output, vertexErrors), pixel, pixelErrors);
    program.pixelOutputs = placePixelOutputs(pixel, pixelErrors);
    program.writesDepth = writesDepth(pixel);
    errors =
        locate(request.name, vertexSource, vertexErrors) + locate(request.name, pixelSource, pixelErrors);
    return errors.empty();
}

bool isValid(const std::string& name, const std::string& entry, const std::vector<uint32_t>& words,
             std::string& errors)
{
    std::string invalid;
    if (validateSpirv(words, invalid))
        return true;
    errors += name + ":1: error: '" + entry + "' compiles to invalid SPIR-V: " + invalid + "\n";
    return false;
}

/// What works on modules, drivers included, takes more than its share of time on large ones.
bool isOfSize(const std::string& name, const std::string& entry, const std::vector<uint32_t>& words,
              std::string& errors)
{
    const size_t size = words.size() * sizeof(uint32_t);
    if (size <= maxModuleSize)
        return true;
    errors = name + ":1: error: '" + entry + "' compiles to " + std::to_string(size) +
             " bytes of SPIR-V, more than " + std::to_string(maxModuleSize) + "\n";
    return false;
}

bool finish(const std::string& name, const std::string& entry, SpirvModule& module,
            std::vector<uint32_t>& words, std::string& errors)
{
    stripSemantics(module);
    words = module.write();
    return isValid(name, entry, words, errors);
}

/// A program without a pixel stage draws depth alone.
bool hasPixelStage(const ShaderRequest& request, const ShaderSource& pixelSource)
{
    return !pixelSource.text.empty() || !request.pixelEntry.empty();
}

bool hasTexts(const ShaderRequest& request, const ShaderSource& vertexSource, const ShaderSource& pixelSource,
              std::string& errors)
{
    const bool hasPixels = hasPixelStage(request, pixelSource);
    const std::tuple<const std::string*, const char*, bool> texts[] = {
        {&vertexSource.text, "no vertex source", true},
        {&request.vertexEntry, "no vertex entry point", true},
        {&pixelSource.text, "no pixel source", hasPixels},
        {&request.pixelEntry, "no pixel entry point", hasPixels},
    };
    for (const auto& [text, words, isNeeded] : texts)
        if (isNeeded && text->empty()) {
            errors = request.name + ":1: error: " + words + "\n";
            return false;
        }
    return true;
}

} // namespace

bool ShaderBuilder::compile(const ShaderRequest& request, ShaderStage stage, const ShaderSource& source,
                            SpirvModule& module, std::vector<ShaderWarning>& warnings, std::string& errors)
{
    const std::string& entry = stage == ShaderStage::Vertex ? request.vertexEntry : request.pixelEntry;
    HlslStage input{stage,          request.name,    source.text,          entry,
                    request.macros, source.includes, source.allowsIncludes};
    std::vector<uint32_t> words;
    std::vector<ShaderWarning> told;
    if (!m_compiler.compile(input, words, errors, told))
        return false;
    for (ShaderWarning& warning : told) // both stages mostly share one text
        if (std::find(warnings.begin(), warnings.end(), warning) == warnings.end())
            warnings.push_back(std::move(warning));
    if (!isOfSize(request.name, entry, words, errors) || !isValid(request.name, entry, words, errors))
        return false; // what follows trusts the module's form
    module.parse(words);
    repairComparedTextures(module);
    makeComparedGathers(module);
    repairSystemValues(module);
    repairNumbers(module);
    keepConstantTables(module);
    packConstantBuffers(module, findPlacedBuffers(source));
    return true;
}

ShaderProgramPtr ShaderBuilder::build(const ShaderRequest& request, const ShaderSource& vertexSource,
                                      const ShaderSource& pixelSource, std::string& errors)
{
    SpirvModule vertex;
    SpirvModule pixel;
    auto program = std::make_shared<ShaderProgram>();
    errors.clear();
    const bool hasPixels = hasPixelStage(request, pixelSource);
    if (!hasTexts(request, vertexSource, pixelSource, errors) ||
        !compile(request, ShaderStage::Vertex, vertexSource, vertex, program->warnings, errors) ||
        (hasPixels && !compile(request, ShaderStage::Pixel, pixelSource, pixel, program->warnings, errors)) ||
        !link(request, vertexSource, pixelSource, vertex, pixel, *program, errors) ||
        !finish(request.name, request.vertexEntry, vertex, program->vertexWords, errors) ||
        (hasPixels && !finish(request.name, request.pixelEntry, pixel, program->pixelWords, errors)))
        return nullptr;
    program->vertexEntry = request.vertexEntry;
    program->pixelEntry = request.pixelEntry;
    program->hash = hashOf(*program);
    return program;
}

std::string ShaderBuilder::version()
{
    return HlslCompiler::version() + " builder " + std::to_string(builderVersion);
}

} // namespace helvantine
