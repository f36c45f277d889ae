// SPDX-License-Identifier: MIT
#include "shader/ShaderProgramCode.h"

#include "shader/ByteCodec.h"
#include "shader/SpirvValidator.h"

namespace helvantine
{

namespace
{

constexpr uint32_t fileMagic = 0x50535648; // "HVSP"
constexpr uint32_t fileVersion = 2;

constexpr uint32_t kindCount = uint32_t(ShaderBindingKind::StructuredBuffer) + 1;
constexpr uint32_t declarationKindCount = uint32_t(ShaderDeclarationKind::VertexInput) + 1;
constexpr uint32_t dimensionCount = uint32_t(TextureDimension::TextureCubeArray) + 1;
constexpr uint32_t componentTypeCount = uint32_t(ShaderComponentType::Uint) + 1;

void writeBinding(ByteWriter& writer, const ShaderBinding& binding)
{
    for (uint32_t field : {uint32_t(binding.kind), uint32_t(binding.dimension), uint32_t(binding.component),
                           uint32_t(binding.comparison), uint32_t(binding.stages), uint32_t(binding.slot)})
        writer.number(field, 1);
    writer.number(binding.binding, 2);
    writer.number(binding.size);
    writer.number(binding.textures, 2);
}

ShaderBinding readBinding(ByteReader& reader)
{
    ShaderBinding binding;
    binding.kind = ShaderBindingKind(reader.below(kindCount));
    binding.dimension = TextureDimension(reader.below(dimensionCount));
    binding.component = ShaderComponentType(reader.below(componentTypeCount));
    binding.comparison = reader.below(2) != 0;
    binding.stages = uint8_t(reader.below((vertexStageBit | pixelStageBit) + 1));
    binding.slot = uint8_t(reader.below(textureRegisterCount));
    binding.binding = uint16_t(reader.below(shaderBindingEnd, 2));
    binding.size = uint32_t(reader.number());
    binding.textures = uint16_t(reader.number(2));
    return binding;
}

/// The binding that the kind, stage and slot stand for.
uint32_t placeOf(const ShaderBinding& binding)
{
    if (binding.kind == ShaderBindingKind::Sampler)
        return binding.binding < samplerPairBindingBase
                   ? samplerBindingBase + binding.slot
                   : samplerPairBinding(binding.slot,
                                        (binding.binding - samplerPairBindingBase) % textureRegisterCount);
    if (binding.kind != ShaderBindingKind::ConstantBuffer)
        return textureBindingBase + binding.slot;
    return (binding.stages & vertexStageBit ? vertexConstantBindingBase : pixelConstantBindingBase) +
           binding.slot;
}

/// True for bindings as they are made: no more than a set holds, each once, in order and in its place.
/// Drawing indexes its slots by them unchecked.
bool areSound(const std::vector<ShaderBinding>& bindings)
{
    if (bindings.size() > maxShaderBindings)
        return false;
    uint32_t end = 0;
    for (const ShaderBinding& binding : bindings) {
        const bool constants = binding.kind == ShaderBindingKind::ConstantBuffer;
        if (binding.stages == 0 || (constants && binding.slot >= constantRegisterCount) ||
            binding.binding != placeOf(binding) || binding.binding < end)
            return false;
        end = binding.binding + 1u;
    }
    return true;
}

std::string encodeContent(const Hash128& key, const ShaderProgram& program)
{
    ByteWriter writer;
    writer.hash(key);
    writer.words(program.vertexWords);
    writer.words(program.pixelWords);
    writer.text(program.vertexEntry);
    writer.text(program.pixelEntry);
    writer.number(program.bindings.size());
    for (const ShaderBinding& binding : program.bindings)
        writeBinding(writer, binding);
    writer.number(program.vertexInputs.size());
    for (const ShaderVertexInput& input : program.vertexInputs) {
        writer.text(input.semantic);
        writer.number(input.index);
        writer.number(input.location);
        writer.number(uint32_t(input.component), 1);
        writer.number(input.componentCount, 1);
    }
    writer.number(program.pixelOutputs.size());
    for (const ShaderPixelOutput& output : program.pixelOutputs) {
        writer.number(output.target, 1);
        writer.number(uint32_t(output.component), 1);
        writer.number(output.componentCount, 1);
    }
    writer.number(program.declarations.size());
    for (const ShaderDeclaration& declaration : program.declarations) {
        writer.number(uint32_t(declaration.kind), 1);
        writer.number(declaration.stages, 1);
        writer.number(declaration.number);
        writer.text(declaration.name);
        writer.number(declaration.line);
    }
    writer.number(program.writesDepth, 1);
    writer.number(program.warnings.size());
    for (const ShaderWarning& warning : program.warnings) {
        writer.text(warning.file);
        writer.number(warning.line);
        writer.text(warning.text);
    }
    writer.hash(program.hash);
    return writer.bytes;
}

void readContent(ByteReader& reader, ShaderProgram& program)
{
    program.vertexWords = reader.words();
    program.pixelWords = reader.words();
    program.vertexEntry = reader.text();
    program.pixelEntry = reader.text();
    for (uint32_t left = reader.count(); left > 0; --left)
        program.bindings.push_back(readBinding(reader));
    for (uint32_t left = reader.count(); left > 0; --left) {
        ShaderVertexInput& input = program.vertexInputs.emplace_back();
        input.semantic = reader.text();
        input.index = uint32_t(reader.number());
        input.location = uint32_t(reader.number());
        input.component = ShaderComponentType(reader.below(componentTypeCount));
        input.componentCount = reader.below(5);
    }
    for (uint32_t left = reader.count(); left > 0; --left) {
        ShaderPixelOutput& output = program.pixelOutputs.emplace_back();
        output.target = reader.below(8);
        output.component = ShaderComponentType(reader.below(componentTypeCount));
        output.componentCount = reader.below(5);
    }
    for (uint32_t left = reader.count(); left > 0; --left) {
        ShaderDeclaration& declaration = program.declarations.emplace_back();
        declaration.kind = ShaderDeclarationKind(reader.below(declarationKindCount));
        declaration.stages = uint8_t(reader.below((vertexStageBit | pixelStageBit) + 1));
        declaration.number = uint32_t(reader.number());
        declaration.name = reader.text();
        declaration.line = uint32_t(reader.number());
    }
    program.writesDepth = reader.below(2) != 0;
    for (uint32_t left = reader.count(); left > 0 && !reader.failed; --left) {
        ShaderWarning& warning = program.warnings.emplace_back();
        warning.file = reader.text();
        warning.line = uint32_t(reader.number());
        warning.text = reader.text();
    }
    program.hash = reader.hash();
}

} // namespace

std::string encodeShaderProgram(const Hash128& key, const ShaderProgram& program)
{
    std::string content = encodeContent(key, program);
    ByteWriter writer;
    writer.number(fileMagic);
    writer.number(fileVersion);
    writer.number(content.size(), 8);
    writer.hash(hashBytes(content.data(), content.size()));
    return writer.bytes + content;
}

ShaderProgramPtr decodeShaderProgram(const Hash128& key, const std::string& bytes)
{
    constexpr size_t headSize = 4 + 4 + 8 + 16;
    ByteReader head(bytes, 0);
    bool isOurs = bytes.size() >= headSize && head.number() == fileMagic && head.number() == fileVersion &&
                  head.number(8) == bytes.size() - headSize;
    if (!isOurs || head.hash() != hashBytes(bytes.data() + headSize, bytes.size() - headSize))
        return nullptr;
    ByteReader reader(bytes, headSize);
    auto program = std::make_shared<ShaderProgram>();
    if (reader.hash() != key)
        return nullptr;
    readContent(reader, *program);
    std::string invalid;
    if (reader.failed || !reader.atEnd() || !areSound(program->bindings) ||
        !validateSpirv(program->vertexWords, invalid) ||
        (!program->pixelWords.empty() && !validateSpirv(program->pixelWords, invalid)))
        return nullptr;
    return program;
}

} // namespace helvantine
