// SPDX-License-Identifier: MIT
// What writing a picture costs: the thread that draws, which hands its pixels over, and the one that encodes them. The
// baseline is a copy of the pixels.
#include "FrameWriter.h"
#include "PngEncoder.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace
{

using namespace helvantine::tool;

FrameSize getSize(const benchmark::State& state)
{
    return {static_cast<unsigned>(state.range(0)), static_cast<unsigned>(state.range(0) * 9 / 16)};
}

/// Soft shapes under grain, as frames of demos are.
std::vector<uint8_t> paint(FrameSize size)
{
    std::vector<uint8_t> pixels(std::size_t{4} * size.width * size.height);
    uint32_t noise = 1;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        noise = noise * 1664525 + 1013904223;
        const double x = static_cast<double>(i / 4 % size.width) / size.width;
        const double y = static_cast<double>(i / 4 / size.width) / size.height;
        const double wave = std::sin(9 * x + static_cast<double>(i % 4)) * std::cos(7 * y);
        pixels[i] = static_cast<uint8_t>(128 + 100 * wave + (noise >> 30));
    }
    return pixels;
}

void copyPixels(benchmark::State& state)
{
    const std::vector<uint8_t> picture = paint(getSize(state));
    std::vector<uint8_t> pixels(picture.size());
    for (auto _ : state) {
        std::memcpy(pixels.data(), picture.data(), picture.size());
        benchmark::DoNotOptimize(pixels.data());
    }
}

void encodePng(benchmark::State& state)
{
    const std::vector<uint8_t> picture = paint(getSize(state));
    std::vector<uint8_t> pixels;
    PngEncoder encoder;
    std::size_t bytes = 0;
    for (auto _ : state) {
        pixels = picture;
        bytes = encoder.encode(pixels, getSize(state)).size();
    }
    state.counters["bytes/pixel"] = 4.0 * static_cast<double>(bytes) / static_cast<double>(picture.size());
}

/// The time of the thread that draws.
void writePng(benchmark::State& state)
{
    const std::vector<uint8_t> picture = paint(getSize(state));
    const auto writer =
        createPngWriter(*FramePattern::parse("/tmp/helvantine-benchmark.png"), getSize(state));
    std::vector<uint8_t> pixels;
    for (auto _ : state) {
        state.PauseTiming();
        pixels = picture;
        writer->finish();
        state.ResumeTiming();
        writer->write(0, pixels);
    }
    writer->finish();
    std::remove("/tmp/helvantine-benchmark.png");
}

BENCHMARK(copyPixels)->Arg(128)->Arg(1280)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK(encodePng)->Arg(128)->Arg(1280)->Arg(3840)->Unit(benchmark::kMillisecond);
BENCHMARK(writePng)->Arg(128)->Arg(1280)->Arg(3840)->Iterations(50)->Unit(benchmark::kMillisecond);

} // namespace
