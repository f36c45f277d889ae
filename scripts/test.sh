#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds everything with assertions on, and runs all tests; the summary comes last.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/setup.sh
[ -f build/dev/build.ninja ] || cmake --preset dev
cmake --build build/dev

# A minute of fuzzing, where clang and its fuzzer are; the tests below replay its corpus in any case.
if [ -f "$(clang++ -print-resource-dir 2>/dev/null)/lib/linux/libclang_rt.fuzzer-$(uname -m).a" ]; then
    [ -f build/fuzz/build.ninja ] || cmake --preset fuzz
    cmake --build --preset fuzz
    ctest --preset fuzz
fi

ctest --test-dir build/dev --output-on-failure --parallel "$(nproc)"
