#!/usr/bin/env bash
# Renders the drawings resources/icons/*.svg and resources/graphics/*.svg to <folder>/png/<name>.png
# at the size each SVG declares. The PNGs are committed, so building needs no SVG renderer; run
# this after changing an SVG. Needs rsvg-convert (Debian package librsvg2-bin).
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

if ! command -v rsvg-convert >/dev/null; then
  echo "render-icons: rsvg-convert not found (apt-get install librsvg2-bin)" >&2
  exit 1
fi

count=0
for src in "$root/resources/icons" "$root/resources/graphics"; do
  mkdir -p "$src/png"
  for svg in "$src"/*.svg; do
    name="$(basename "$svg" .svg)"
    rsvg-convert --format=png --output="$src/png/$name.png" "$svg"
    count=$((count + 1))
  done
done
echo "render-icons: $count drawings written"
