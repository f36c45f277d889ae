#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs what a build needs on Debian, without questions. Does nothing when all of it is there.
# With --developer also what the gates need beyond the tests: formatting, static analysis, coverage.
set -euo pipefail

packages=(
    build-essential cmake ninja-build ccache pkg-config git python3
    libvulkan-dev libvulkan-volk-dev mesa-vulkan-drivers vulkan-validationlayers
    libshaderc-dev glslang-dev spirv-tools spirv-headers
    libsdl2-dev libstb-dev libzip-dev libpng-dev libjpeg62-turbo-dev
    libgtest-dev libgmock-dev libbenchmark-dev clang libclang-rt-14-dev xvfb xauth
    nlohmann-json3-dev libcli11-dev libdeflate-dev
)

if [ "${1:-}" = --developer ]; then
    packages+=(clang-format clang-tidy gcovr)
fi

missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "setup: installing ${missing[*]}"
sudo=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: not root and no sudo; install by hand: ${missing[*]}" >&2; exit 1; }
    sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -q
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
