// SPDX-License-Identifier: MIT
// Stands where the shader compiler's process does, and misbehaves as the pixel stage's entry point tells it to.
#include "shader/ShaderBuilder.h"
#include "shader/helper/ShaderJob.h"

#include <helvantine/core/MessageChannel.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

using namespace helvantine;

namespace
{

constexpr auto never = MessageChannel::s_never;

/// What a process can tell about how it was started.
std::string describeSelf()
{
    std::string words = std::to_string(getpid()) + ": descriptors";
    for (int descriptor = 0; descriptor < 256; ++descriptor)
        if (fcntl(descriptor, F_GETFD) >= 0)
            words += " " + std::to_string(descriptor);
    sigset_t blocked;
    sigprocmask(SIG_SETMASK, nullptr, &blocked);
    words += sigismember(&blocked, SIGTERM) ? ", signals blocked" : ", no signal blocked";
    words += signal(SIGPIPE, SIG_DFL) == SIG_DFL ? ", none ignored" : ", some ignored";
    return words + (getpgrp() == getpid() ? ", own group" : ", its parent's group");
}

void misbehave(const std::string& how, MessageChannel& channel)
{
    if (how == "crash") {
        signal(SIGSEGV, SIG_DFL);
        raise(SIGSEGV);
    } else if (how == "hang") {
        for (volatile bool forever = true; forever;) {
        }
    } else if (how == "sleep") {
        pause();
    } else if (how == "nap") {
        usleep(1200000);
    } else if (how == "killed") {
        raise(SIGKILL);
    } else if (how == "exit") {
        _exit(3);
    } else if (how == "memory") {
        _exit(HelperExitOutOfMemory);
    } else if (how == "stack") {
        _exit(HelperExitOutOfStack);
    } else if (how == "nonsense") {
        channel.send("nonsense", never);
    } else if (how == "nothing") {
        channel.send("", never);
    } else if (how == "endless") {
        send(STDIN_FILENO, "\xff\xff\xff\xff", 4, MSG_NOSIGNAL);
    } else if (how == "half") {
        send(STDIN_FILENO, "\x10\0\0\0half", 8, MSG_NOSIGNAL);
        _exit(0);
    } else if (how == "deaf") {
        shutdown(STDIN_FILENO, SHUT_RDWR);
        pause();
    }
}

ShaderAnswer answerTo(const ShaderJob& job)
{
    ShaderAnswer answer;
    if (job.request.pixelEntry == "describe")
        answer.errors = describeSelf();
    else
        answer.program = ShaderBuilder().build(job.request, job.vertexSource, job.pixelSource, answer.errors);
    if (job.request.pixelEntry == "unsound") {
        auto program = std::make_shared<ShaderProgram>(*answer.program);
        program->pixelWords.pop_back();
        answer.program = program;
    }
    answer.hasGrown = job.request.name == "grown";
    return answer;
}

} // namespace

int main(int, char** arguments)
{
    MessageChannel channel(STDIN_FILENO);
    // Its memory limit tells it to belong to another version.
    channel.send(std::strtoull(arguments[1], nullptr, 10) == 1 ? "another version" : getHelperGreeting(),
                 never);
    std::string bytes;
    ShaderJob job;
    while (channel.receive(bytes, maxJobSize, never) == MessageChannel::Result::Done) {
        job = {};
        if (!decodeShaderJob(bytes, job))
            return 1;
        misbehave(job.request.pixelEntry, channel);
        channel.send(encodeShaderAnswer(answerTo(job)), never);
        if (job.request.name == "last")
            return 0;
        if (job.request.name == "chatty")
            channel.send("and another thing", never);
    }
    return 0;
}
