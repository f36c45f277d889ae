// SPDX-License-Identifier: MIT
#include "shader/ShaderProgramFile.h"

#include "shader/SpirvValidator.h"

#include <helvantine/core/FileUtil.h>

#include <fstream>
#include <iterator>

namespace helvantine
{

namespace
{

constexpr uint32_t fileMagic = 0x50535648; // "HVSP"
constexpr uint32_t fileVersion = 1;
constexpr uint32_t maxListLength = 256;

class Writer
{
public:
    std::string bytes;

    void number(uint64_t value, int width = 4)
    {
        for (int i = 0; i < width; ++i)
            bytes += char(value >> (8 * i) & 255);
    }
    void hash(const Hash128& value)
    {
        number(value.low, 8);
        number(value.high, 8);
    }
    void text(const std::string& value)
    {
        number(value.size());
        bytes += value;
    }
    void words(const std::vector<uint32_t>& value)
    {
        number(value.size());
        for (uint32_t word : value)
            number(word);
    }
};

/// Yields zeros once the bytes run out; `failed` then stays true.
class Reader
{
public:
    explicit Reader(const std::string& bytes, size_t at) : m_bytes(bytes), m_at(at) {}

    bool failed = false;
    bool atEnd() const { return m_at == m_bytes.size(); }

    uint64_t number(int width = 4)
    {
        if (!has(size_t(width)))
            return 0;
        uint64_t value = 0;
        for (int i = 0; i < width; ++i)
            value |= uint64_t(static_cast<unsigned char>(m_bytes[m_at++])) << (8 * i);
        return value;
    }
    Hash128 hash()
    {
        uint64_t low = number(8);
        return {low, number(8)};
    }
    std::string text()
    {
        size_t size = number();
        if (!has(size))
            return {};
        m_at += size;
        return m_bytes.substr(m_at - size, size);
    }
    std::vector<uint32_t> words()
    {
        size_t count = number();
        if (!has(count * sizeof(uint32_t)))
            return {};
        std::vector<uint32_t> value(count);
        for (uint32_t& word : value)
            word = uint32_t(number());
        return value;
    }
    uint32_t count()
    {
        auto value = uint32_t(number());
        failed |= value > maxListLength;
        return failed ? 0 : value;
    }
    /// A number below `end`.
    uint32_t below(uint32_t end, int width = 1)
    {
        auto value = uint32_t(number(width));
        failed |= value >= end;
        return failed ? 0 : value;
    }

private:
    bool has(size_t size)
    {
        failed |= size > m_bytes.size() - m_at;
        return !failed;
    }

    const std::string& m_bytes;
    size_t m_at = 0;
};

constexpr uint32_t kindCount = uint32_t(ShaderBindingKind::StructuredBuffer) + 1;
constexpr uint32_t dimensionCount = uint32_t(TextureDimension::TextureCubeArray) + 1;
constexpr uint32_t componentTypeCount = uint32_t(ShaderComponentType::Uint) + 1;

void writeBinding(Writer& writer, const ShaderBinding& binding)
{
    for (uint32_t field : {uint32_t(binding.kind), uint32_t(binding.dimension), uint32_t(binding.component),
                           uint32_t(binding.comparison), uint32_t(binding.stages), uint32_t(binding.slot),
                           uint32_t(binding.binding)})
        writer.number(field, 1);
    writer.number(binding.size);
}

ShaderBinding readBinding(Reader& reader)
{
    ShaderBinding binding;
    binding.kind = ShaderBindingKind(reader.below(kindCount));
    binding.dimension = TextureDimension(reader.below(dimensionCount));
    binding.component = ShaderComponentType(reader.below(componentTypeCount));
    binding.comparison = reader.below(2) != 0;
    binding.stages = uint8_t(reader.below((vertexStageBit | pixelStageBit) + 1));
    binding.slot = uint8_t(reader.below(textureRegisterCount));
    binding.binding = uint8_t(reader.below(shaderBindingEnd));
    binding.size = uint32_t(reader.number());
    return binding;
}

/// The binding that the kind, stage and slot stand for.
uint32_t placeOf(const ShaderBinding& binding)
{
    if (binding.kind == ShaderBindingKind::Sampler)
        return samplerBindingBase + binding.slot;
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
    Writer writer;
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
    writer.number(program.writesDepth, 1);
    writer.hash(program.hash);
    return writer.bytes;
}

void readContent(Reader& reader, ShaderProgram& program)
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
    program.writesDepth = reader.below(2) != 0;
    program.hash = reader.hash();
}

} // namespace

std::string encodeShaderProgram(const Hash128& key, const ShaderProgram& program)
{
    std::string content = encodeContent(key, program);
    Writer writer;
    writer.number(fileMagic);
    writer.number(fileVersion);
    writer.number(content.size(), 8);
    writer.hash(hashBytes(content.data(), content.size()));
    return writer.bytes + content;
}

ShaderProgramPtr decodeShaderProgram(const Hash128& key, const std::string& bytes)
{
    constexpr size_t headSize = 4 + 4 + 8 + 16;
    Reader head(bytes, 0);
    bool isOurs = bytes.size() >= headSize && head.number() == fileMagic && head.number() == fileVersion &&
                  head.number(8) == bytes.size() - headSize;
    if (!isOurs || head.hash() != hashBytes(bytes.data() + headSize, bytes.size() - headSize))
        return nullptr;
    Reader reader(bytes, headSize);
    auto program = std::make_shared<ShaderProgram>();
    if (reader.hash() != key)
        return nullptr;
    readContent(reader, *program);
    std::string invalid;
    if (reader.failed || !reader.atEnd() || !areSound(program->bindings) ||
        !validateSpirv(program->vertexWords, invalid) || !validateSpirv(program->pixelWords, invalid))
        return nullptr;
    return program;
}

std::string shaderProgramPath(const std::string& folder, const Hash128& key)
{
    return folder + "/" + key.toString() + ".program";
}

ShaderProgramPtr readShaderProgram(const std::string& folder, const Hash128& key)
{
    std::ifstream file(shaderProgramPath(folder, key), std::ios::binary);
    if (!file)
        return nullptr;
    std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return decodeShaderProgram(key, bytes);
}

bool writeShaderProgram(const std::string& folder, const Hash128& key, const ShaderProgram& program)
{
    if (!makeFolders(folder.c_str()))
        return false;
    std::string temporary = createTemporaryFile(folder.c_str(), "new-");
    if (temporary.empty())
        return false;
    std::string bytes = encodeShaderProgram(key, program);
    std::ofstream file(temporary, std::ios::binary);
    file.write(bytes.data(), std::streamsize(bytes.size()));
    file.close();
    if (file && replaceFile(temporary.c_str(), shaderProgramPath(folder, key).c_str()))
        return true;
    deleteFile(temporary.c_str());
    return false;
}

} // namespace helvantine
