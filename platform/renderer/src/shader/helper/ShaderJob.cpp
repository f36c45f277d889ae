// SPDX-License-Identifier: MIT
#include "shader/helper/ShaderJob.h"

#include "shader/ByteCodec.h"
#include "shader/ShaderBuilder.h"
#include "shader/ShaderProgramCode.h"

#include <utility>

namespace helvantine
{

namespace
{

constexpr uint32_t protocolVersion = 1;
constexpr Hash128 noKey; ///< an answer belongs to its job, not to a file

void writeSource(ByteWriter& writer, const ShaderSource& source)
{
    writer.text(source.text);
    writer.number(source.allowsIncludes, 1);
    writer.number(source.includes.size());
    for (const auto& [path, text] : source.includes) {
        writer.text(path);
        writer.text(text);
    }
}

ShaderSource readSource(ByteReader& reader)
{
    ShaderSource source;
    source.text = reader.text();
    source.allowsIncludes = reader.below(2) != 0;
    for (uint32_t left = reader.count(maxIncludeCount); left > 0 && !reader.failed; --left) {
        std::string path = reader.text();
        source.includes[path] = reader.text();
    }
    return source;
}

} // namespace

std::string getHelperGreeting()
{
    return "helvantine-shader-compiler " + std::to_string(protocolVersion) + ", " + ShaderBuilder::version();
}

std::string encodeShaderJob(const ShaderRequest& request, const ShaderSource& vertexSource,
                            const ShaderSource& pixelSource)
{
    ByteWriter writer;
    for (const std::string* text : {&request.name, &request.vertexEntry, &request.pixelEntry})
        writer.text(*text);
    writer.number(request.macros.size());
    for (const auto& [name, value] : request.macros) {
        writer.text(name);
        writer.text(value);
    }
    writeSource(writer, vertexSource);
    writeSource(writer, pixelSource);
    return std::move(writer.bytes);
}

bool decodeShaderJob(const std::string& bytes, ShaderJob& job)
{
    ByteReader reader(bytes, 0);
    for (std::string* text : {&job.request.name, &job.request.vertexEntry, &job.request.pixelEntry})
        *text = reader.text();
    for (uint32_t left = reader.count(maxShaderMacroCount); left > 0 && !reader.failed; --left) {
        std::string name = reader.text();
        job.request.macros.emplace_back(std::move(name), reader.text());
    }
    job.vertexSource = readSource(reader);
    job.pixelSource = readSource(reader);
    return !reader.failed && reader.atEnd();
}

std::string encodeShaderAnswer(const ShaderAnswer& answer)
{
    ByteWriter writer;
    writer.number(answer.program != nullptr, 1);
    writer.number(answer.hasGrown, 1);
    return writer.bytes + (answer.program ? encodeShaderProgram(noKey, *answer.program)
                                          : answer.errors.substr(0, maxErrorTextSize));
}

bool decodeShaderAnswer(const std::string& bytes, ShaderAnswer& answer)
{
    ByteReader reader(bytes, 0);
    const bool succeeded = reader.below(2) != 0;
    answer = {};
    answer.hasGrown = reader.below(2) != 0;
    if (reader.failed)
        return false;
    if (succeeded)
        answer.program = decodeShaderProgram(noKey, bytes.substr(2));
    else if (bytes.size() - 2 <= maxErrorTextSize)
        answer.errors = bytes.substr(2);
    return succeeded ? answer.program != nullptr : !answer.errors.empty();
}

} // namespace helvantine
