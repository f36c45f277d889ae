#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what is missing, builds everything with assertions on, and runs all tests; the summary comes last.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/setup.sh
[ -f build/dev/build.ninja ] || cmake --preset dev
cmake --build build/dev
ctest --test-dir build/dev --output-on-failure --parallel "$(nproc)"
