#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the benchmarks with full optimisation and runs them. Arguments go to each program, for example
# --benchmark_filter=playCurves.
set -euo pipefail

cd "$(dirname "$0")/.."
cmake --preset release
programs=(
    DocumentBenchmark
    EffectBenchmark
    PlaybackBenchmark
    GraphBenchmark
    RendererBenchmark
    ShaderBenchmark
    PngBenchmark
)
cmake --build --preset release --target "${programs[@]}" LiveEditBenchmark
for program in "${programs[@]}"; do
    "build/release/bin/$program" --benchmark_min_time=1 "$@"
done

# This one plays in a window.
display=()
[ -n "${DISPLAY:-}" ] || display=(xvfb-run -a "--server-args=-screen 0 1600x1000x24 -noreset")
"${display[@]}" build/release/bin/LiveEditBenchmark "$@"
