#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# From nothing to pictures: installs what is missing, builds, makes the first example's document and renders it
# into out/first-light/. Does again only what has changed.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/setup.sh
[ -f build/release/build.ninja ] || cmake --preset release
cmake --build build/release --target HelvantineCommand FirstLight

bin=build/release/bin
out=out/first-light
document=$out/first-light.hfx
mkdir -p "$out"

# True if a file is there and younger than everything that it is made with.
is_fresh() {
    local made=$1 source
    [ -f "$made" ] || return 1
    for source in "$bin"/helvantine "$bin"/first-light "$bin"/*.dll; do
        [ "$made" -nt "$source" ] || return 1
    done
}

if ! is_fresh "$document"; then
    "$bin/first-light" "$document"
fi

stills=(45 120 200 270)
for frame in "${stills[@]}"; do
    still=$out/first-light-$(printf %03d "$frame").png
    if ! is_fresh "$still"; then
        "$bin/helvantine" render "$document" --frames "$frame" -o "$still"
        echo "demo: $still"
    fi
done

video=$out/first-light.mp4
if ! command -v ffmpeg >/dev/null; then
    video=
elif ! is_fresh "$video"; then
    echo "demo: rendering $video, which takes a few minutes without a GPU"
    "$bin/helvantine" render "$document" -o "$video" --progress
fi

echo
echo "Open these:"
for frame in "${stills[@]}"; do
    echo "  $out/first-light-$(printf %03d "$frame").png"
done
if [ -n "$video" ]; then
    echo "  $video"
else
    echo "With the ffmpeg program installed there is a video as well."
fi
echo "The document is $document; build/release/bin/helvantine render --help tells what can be done with it."
