#!/usr/bin/env bash
# Runs every libFuzzer target of a fuzz build (make fuzz) for the given seconds each, starting
# from its seed corpus in the tree. New inputs and any crashing input land in
# <build>/fuzz-runs/<target>/; the seed folders are left as they are. Prints one name=value
# line per figure and fails when a target found something.
#   tests/fuzz/run-fuzzers.sh BUILD_DIR SECONDS
set -uo pipefail
build=${1:?build folder}
seconds=${2:-60}
table=$build/ZamFuzzers.txt
[ -f "$table" ] || { echo "no $table: configure with -DZAM_FUZZ=ON" >&2; exit 2; }
failed=0
while read -r name corpus; do
  [ -n "$name" ] || continue
  work=$build/fuzz-runs/$name
  mkdir -p "$work/new" "$work/findings"
  dict=()
  stem=${name%_fuzz}
  [ -f "$(dirname "$corpus")/$stem.dict" ] && dict=(-dict="$(dirname "$corpus")/$stem.dict")
  log=$work/last.log
  key=${stem#fuzz_}
  # The processor time it got, so a busy machine does not hide a slow target. One job alone:
  # nothing else adds to the corpus folder, so it is not read again while running.
  /usr/bin/time -f "cpu %U %S" -o "$work/cpu" "$build/bin/$name" -max_total_time="$seconds" -print_final_stats=1 -reload=0 \
    -artifact_prefix="$work/findings/" "${dict[@]}" "$work/new" "$corpus" >"$log" 2>&1
  status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  cpu=$(awk '/^cpu/ { print $2 + $3 }' "$work/cpu")
  echo "fuzz_${key}_runs=${runs:-0}"
  echo "fuzz_${key}_runs_per_second=${rate:-0}"
  echo "fuzz_${key}_runs_per_cpu_second=$(awk -v r="${runs:-0}" -v c="${cpu:-0}" 'BEGIN { printf "%d", (c > 0 ? r / c : 0) }')"
  if [ "$status" -ne 0 ]; then
    failed=1
    echo "fuzz_${key}_finding=$(ls "$work/findings" | head -1)"
    grep -m1 -E "ERROR|SUMMARY" "$log" >&2
  fi
done <"$table"
exit $failed
