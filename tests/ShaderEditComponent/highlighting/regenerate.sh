#!/usr/bin/env bash
# Rewrites expected/*.dump from the current highlighter. Usage: regenerate.sh [build-dir]
# (default: build). Review `git diff` of expected/ before committing the result.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-$here/../../../build}"
cmake --build "$build" --target tst_ShaderHighlightDumps -j2
mkdir -p "$here/expected"
test_binary="$(find "$build" -type f -name tst_ShaderHighlightDumps -perm -u+x | head -n 1)"
QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME="$(mktemp -d)" ZAM_REGENERATE_HIGHLIGHT_DUMPS=1 "$test_binary"
echo "Dumps written to $here/expected"
