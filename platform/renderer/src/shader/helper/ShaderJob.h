// SPDX-License-Identifier: MIT
#pragma once

#include "shader/ShaderProgram.h"
#include "shader/ShaderRequest.h"
#include "shader/ShaderSource.h"

#include <cstddef>
#include <string>

/// What a host and its shader compiler's process say to each other.
///
/// The process first sends its greeting. Then each job gets one answer. Both sides are of one build: a greeting
/// that differs ends the talk.

namespace helvantine
{

constexpr size_t maxJobSize = size_t(64) << 20;   ///< bytes
constexpr size_t maxAnswerSize = size_t(8) << 20; ///< bytes; holds the largest program
constexpr size_t maxGreetingSize = 1024;          ///< bytes
constexpr size_t maxErrorTextSize = size_t(64) << 10;

/// Exit codes of the process.
enum HelperExit : int
{
    HelperExitDone = 0,
    HelperExitMisused = 2,
    HelperExitOutOfMemory = 71,
    HelperExitOutOfStack = 72
};

/// A request whose texts are loaded.
struct ShaderJob
{
    ShaderRequest request; ///< name, entry points and macros alone
    ShaderSource vertexSource;
    ShaderSource pixelSource;
};

struct ShaderAnswer
{
    ShaderProgramPtr program; ///< null on failure
    std::string errors;       ///< its words; empty on success
    bool hasGrown = false;    ///< the process holds so much memory that it is better replaced
};

std::string getHelperGreeting();

std::string encodeShaderJob(const ShaderRequest& request, const ShaderSource& vertexSource,
                            const ShaderSource& pixelSource);
bool decodeShaderJob(const std::string& bytes, ShaderJob& job);

std::string encodeShaderAnswer(const ShaderAnswer& answer);
/// False if it is none: damaged, without words, or with a program that isn't sound.
bool decodeShaderAnswer(const std::string& bytes, ShaderAnswer& answer);

} // namespace helvantine
