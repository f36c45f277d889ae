#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Makes the contact sheet and the list of docs/gallery.md anew, from the document of examples/03-post-gallery.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/setup.sh
[ -f build/release/build.ninja ] || cmake --preset release
cmake --build build/release --target HelvantineCommand PostGallery

bin=build/release/bin
document=out/gallery/gallery.hfx
mkdir -p out/gallery
"$bin/post-gallery" "$document"
frames=$(python3 scripts/gallery_list.py docs/gallery.md <("$bin/helvantine" info "$document" --json))
"$bin/helvantine" render "$document" --frames "$frames" --every 60 --sheet 3 --size 320x180 \
    -o docs/images/gallery.png
echo "Look at docs/images/gallery.png; git diff shows what has changed."
