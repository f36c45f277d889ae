#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Fails if a C++ file isn't laid out as .clang-format says. Exits with 77 where clang-format 14 is missing: other
# versions lay out some lines otherwise.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

if ! clang-format --version 2>/dev/null | grep -q 'version 14\.'; then
    echo "format: skipped, clang-format 14 is missing (scripts/setup.sh --developer installs it)"
    exit 77
fi
git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format --dry-run -Werror
