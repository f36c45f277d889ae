// SPDX-License-Identifier: MIT
// What programs cost: compiled in a process of their own against compiled in this one, and read from disk. The
// programs are those of the texture and screen effects.
#include "shader/ShaderProgramCache.h"
#include "shader/helper/ShaderHelper.h"
#include "support/Ratio.h"

#include <helvantine/effects2d/TextureEffectType.h>

#include <unistd.h>

#include <filesystem>

namespace helvantine::bench
{

namespace
{

ShaderHelperOptions here()
{
    return {};
}

ShaderHelperOptions there()
{
    return {findShaderHelper()};
}

/// False if one of the programs can't be had.
bool getPrograms(ShaderProgramCache& cache, int32_t count = textureEffectTypeCount)
{
    bool complete = true;
    for (int32_t type = 0; type < count; ++type) {
        const TextureEffectProgram* program = getTextureEffectProgram(static_cast<TextureEffectType>(type));
        ShaderRequest request;
        request.vertexSource = getEffectShaderText();
        request.vertexEntry = program->vertexEntry;
        request.pixelSource = request.vertexSource;
        request.pixelEntry = program->pixelEntry;
        std::string errors;
        complete = cache.get(request, errors) && complete;
    }
    return complete;
}

void check(benchmark::State& state, bool complete)
{
    if (!complete)
        state.SkipWithError("a program can't be compiled");
}

/// Both compilers are warm. Programs aren't kept: nobody holds them.
void compileInTheHelper(benchmark::State& state)
{
    ShaderProgramCache baseline("", here());
    ShaderProgramCache subject("", there());
    const auto count = static_cast<int32_t>(state.range(0));
    check(state, getPrograms(baseline, 1) && getPrograms(subject, 1));
    compare(
        state, [&] { getPrograms(baseline, count); }, [&] { getPrograms(subject, count); });
}

/// As a first run finds it: no process, no file. Against the same with the process at work.
void compileCold(benchmark::State& state)
{
    ShaderProgramCache baseline("", there());
    check(state, getPrograms(baseline, 1));
    compare(
        state, [&] { getPrograms(baseline); },
        [&] {
            ShaderProgramCache cold("", there());
            getPrograms(cold);
        });
}

/// As a later run finds it: the files are there. Against compiling.
void readFromDisk(benchmark::State& state)
{
    const auto folder =
        std::filesystem::temp_directory_path() / ("helvantine-shaders-" + std::to_string(getpid()));
    ShaderProgramCache baseline("", there());
    ShaderProgramCache writer(folder.string(), here());
    check(state, getPrograms(writer) && getPrograms(baseline, 1));
    compare(
        state, [&] { getPrograms(baseline); },
        [&] {
            ShaderProgramCache reader(folder.string(), there());
            getPrograms(reader);
        });
    std::filesystem::remove_all(folder);
}

BENCHMARK(compileInTheHelper)
    ->Arg(1)
    ->Arg(textureEffectTypeCount)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(compileCold)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(readFromDisk)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace helvantine::bench
