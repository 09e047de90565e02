#!/usr/bin/env bash
# Rewrites the reference outputs of the shader corpus from the current build.
# Usage: tests/compiler/regenerate.sh [build directory]   (default: build)
# Review the diff before committing: every change is a change of compiler output.
set -euo pipefail

here="$(cd "$(dirname "$0")" && pwd)"
build="${1:-$here/../../build}"
bin="$(cd "$build" && pwd)/bin"
corpus="$here/corpus"
expected="$here/expected"

# Every shader on ZC1; a representative subset on the other cores.
others=(phong.fsh blur9.fsh branches.fsh loop_constant.fsh es3_while.fsh skinning.vsh transform.vsh es3_switch.fsh)

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

generate() {
    local core="$1" shader="$2"
    local name="${shader%.*}" stage="-f"
    [[ "$shader" == *.vsh ]] && stage="-v"
    local out="$expected/$core"
    mkdir -p "$out"
    rm -f "$work/program" "$work/program.prof" "$work/program.disasm"
    # The exit status is part of the log's meaning; failures are expected for error shaders.
    (cd "$corpus" && "$bin/glslcompiler_$core" "$shader" "$name" "$work/program" "$stage" -profile -perfsim -disasm \
        > "$out/$name.log") || true
    for kind in prof disasm; do
        if [[ -f "$work/program.$kind" ]]; then
            cp "$work/program.$kind" "$out/$name.$kind"
        else
            rm -f "$out/$name.$kind"
        fi
    done
}

rm -rf "$expected"
for shader in $(cd "$corpus" && ls); do
    generate zc1 "$shader"
done
for core in zc2 zc3 zd1; do
    for shader in "${others[@]}"; do
        generate "$core" "$shader"
    done
done
echo "reference outputs written to $expected"
