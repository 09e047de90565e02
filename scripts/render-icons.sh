#!/usr/bin/env bash
# Renders the drawings resources/icons/*.svg and resources/graphics/*.svg to <folder>/png/<name>.png
# at the size each SVG declares, the icons also at twice that size as <name>@2x.png (Qt picks
# those on screens scaled to 200 %), and the application icon at the sizes the desktop's
# hicolor theme asks for (packaging/icons/<size>/). The PNGs are committed, so building needs
# no SVG renderer; run this after changing an SVG. Needs rsvg-convert (Debian package librsvg2-bin).
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
    if [ "$src" = "$root/resources/icons" ]; then
      rsvg-convert --format=png --zoom=2 --output="$src/png/$name@2x.png" "$svg"
      count=$((count + 1))
    fi
  done
done

app_icon="$root/resources/icons/ZamShaderEditor_48.svg"
for size in 16 32 48 128 256; do
  mkdir -p "$root/packaging/icons/$size"
  rsvg-convert --format=png --width=$size --height=$size \
    --output="$root/packaging/icons/$size/com.brenmoor.ZamShaderEditor.png" "$app_icon"
  count=$((count + 1))
done
echo "render-icons: $count pictures written"
