#!/usr/bin/env bash
# Takes a picture of the real editor window under Xvfb, with an example shader open and its
# compile finished: the AppStream screenshot and the checks of scaled and dark windows.
#
#   scripts/screenshot.sh BIN_DIR OUTPUT.png [FILE]
#
# BIN_DIR holds zamshadereditor and the bundled compilers (a build's bin folder or an
# installed bin folder). ZAM_SHOT_SCALE=2 takes the window at 200 % (QT_SCALE_FACTOR);
# ZAMSHADEREDITOR_PALETTE=dark is passed on to the editor; ZAM_SHOT_KEYS are pressed first. The editor starts with a fresh
# configuration, so the user's own settings never show. Needs Xvfb, xdotool and ImageMagick's
# import.
set -euo pipefail

bin="$(realpath "$1")"
out="$(realpath -m "$2")"
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
file="$(realpath "${3:-$root/examples/lit_mesh.fsh}")"
scale="${ZAM_SHOT_SCALE:-1}"
width=$((1100 * scale))
height=$((720 * scale))

work="$(mktemp -d)"
display=":$((90 + RANDOM % 100))"
cleanup() {
  [ -n "${editor:-}" ] && kill "$editor" 2>/dev/null || true
  [ -n "${xvfb:-}" ] && kill "$xvfb" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# No splash over the window.
mkdir -p "$work/config/Brenmoor Systems"
cat >"$work/config/Brenmoor Systems/ZamShaderEditor.plist" <<'PLIST'
<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
	<key>About</key>
	<dict>
		<key>ShowSplash</key>
		<false/>
	</dict>
</dict>
</plist>
PLIST

Xvfb "$display" -screen 0 "${width}x${height}x24" -nolisten tcp >"$work/xvfb.log" 2>&1 &
xvfb=$!
for _ in $(seq 50); do xdpyinfo -display "$display" >/dev/null 2>&1 && break; sleep 0.1; done

DISPLAY="$display" XDG_CONFIG_HOME="$work/config" XDG_RUNTIME_DIR="$work" QT_QPA_PLATFORM=xcb \
  QT_SCALE_FACTOR="$scale" "$bin/zamshadereditor" "$file" >"$work/editor.log" 2>&1 &
editor=$!

window=""
for _ in $(seq 100); do
  window="$(DISPLAY="$display" xdotool search --onlyvisible --name 'ZamShaderEditor' 2>/dev/null | head -1)" || true
  [ -n "$window" ] && break
  sleep 0.1
done
[ -n "$window" ] || { cat "$work/editor.log" >&2; echo "screenshot: no window appeared" >&2; exit 1; }
# No window manager: the window is placed and sized here.
DISPLAY="$display" xdotool windowmove "$window" 0 0 windowsize "$window" "$width" "$height"
# The background compile and the views it fills take a moment after the window shows.
sleep 4
# ZAM_SHOT_KEYS: keys pressed in the editor before the picture (xdotool names, e.g. ctrl+End).
if [ -n "${ZAM_SHOT_KEYS:-}" ]; then
  DISPLAY="$display" xdotool key --window "$window" ${ZAM_SHOT_KEYS}
  sleep 1
fi
DISPLAY="$display" import -window root "$out"
echo "screenshot: $out"
