#!/usr/bin/env bash
# Renders the icon sources resources/icons/*.svg to resources/icons/png/<name>.png at the
# size each SVG declares. The PNGs are committed, so building needs no SVG renderer; run
# this after changing an SVG. Needs rsvg-convert (Debian package librsvg2-bin).
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
src="$root/resources/icons"
out="$src/png"

if ! command -v rsvg-convert >/dev/null; then
  echo "render-icons: rsvg-convert not found (apt-get install librsvg2-bin)" >&2
  exit 1
fi

mkdir -p "$out"
count=0
for svg in "$src"/*.svg; do
  name="$(basename "$svg" .svg)"
  rsvg-convert --format=png --output="$out/$name.png" "$svg"
  count=$((count + 1))
done
echo "render-icons: $count icons written to ${out#"$root"/}"
