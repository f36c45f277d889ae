// SPDX-License-Identifier: MIT
// The process in which shaders are compiled: reads jobs from its standard input, a socket, and answers them until
// the other side is gone. A text that crashes the compiler ends this process and no other.
#include "shader/ShaderBuilder.h"
#include "shader/helper/HelperLimits.h"
#include "shader/helper/ShaderJob.h"

#include <helvantine/core/MessageChannel.h>

#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstring>

using namespace helvantine;

namespace
{

bool parseSize(const char* text, uint64_t& size)
{
    const char* end = text + std::strlen(text);
    const auto parsed = std::from_chars(text, end, size);
    return parsed.ec == std::errc() && parsed.ptr == end && size > 0;
}

/// The first compile costs most: it is done while the other side still does something else.
void warmUp(ShaderBuilder& builder)
{
    ShaderJob job;
    job.request.vertexEntry = "VS";
    job.request.pixelEntry = "PS";
    job.vertexSource.text = "float4 VS(float4 position : POSITION) : SV_Position { return position; }";
    job.pixelSource.text = "float4 PS() : SV_Target { return 1; }";
    std::string errors;
    builder.build(job.request, job.vertexSource, job.pixelSource, errors);
}

ShaderAnswer answerTo(const std::string& bytes, ShaderBuilder& builder)
{
    ShaderJob job;
    ShaderAnswer answer;
    if (decodeShaderJob(bytes, job))
        answer.program = builder.build(job.request, job.vertexSource, job.pixelSource, answer.errors);
    else
        answer.errors = "shader:1: error: the shader compiler was given a job without sense\n";
    return answer;
}

int serve(MessageChannel& channel, const HelperLimits& limits)
{
    using Result = MessageChannel::Result;
    if (channel.send(getHelperGreeting(), MessageChannel::s_never) != Result::Done)
        return HelperExitMisused;
    ShaderBuilder builder;
    if (channel.getState() == MessageChannel::State::Quiet)
        warmUp(builder);
    std::string job;
    while (channel.receive(job, maxJobSize, MessageChannel::s_never) == Result::Done) {
        ShaderAnswer answer = answerTo(job, builder);
        answer.hasGrown = hasGrown(limits);
        if (channel.send(encodeShaderAnswer(answer), MessageChannel::s_never) != Result::Done)
            break;
    }
    return HelperExitDone;
}

constexpr const char* usage = "This program compiles shaders for Helvantine, which starts it by itself.\n";

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount == 2 && std::strcmp(arguments[1], "--help") == 0)
        return std::fputs(usage, stdout) < 0;
    HelperLimits limits;
    if (argumentCount != 3 || !parseSize(arguments[1], limits.memory) ||
        !parseSize(arguments[2], limits.stack)) {
        std::fputs(usage, stderr);
        return HelperExitMisused;
    }
    limitProcess(limits, &limits);
    MessageChannel channel(STDIN_FILENO);
    return chdir("/") == 0 ? serve(channel, limits) : HelperExitMisused;
}
