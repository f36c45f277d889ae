#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds with line counters, runs the tests and prints what share of the lines of each folder has run.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

command -v gcovr >/dev/null || { echo "coverage: gcovr is missing (package gcovr)" >&2; exit 1; }
[ -f build/coverage/build.ninja ] || cmake --preset coverage
cmake --build build/coverage
find build/coverage -name '*.gcda' -delete
tests=0
ctest --test-dir build/coverage --output-on-failure --parallel "$(nproc)" || tests=$?
gcovr --root . --object-directory build/coverage --exclude '.*/tests/.*' --exclude 'tests/.*' --exclude 'build/.*' \
    --gcov-ignore-parse-errors --print-summary
exit "$tests"
