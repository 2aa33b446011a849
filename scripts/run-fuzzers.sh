#!/usr/bin/env bash
# Runs every libFuzzer target of a -DKORVEL_FUZZ=ON build for a while, each
# starting from its seed corpus in fuzz/corpus/<target>/ (read only) and
# keeping what it finds in BUILD/fuzz-corpus/<target>/. A crash stops the run
# with the target's report and a non-zero exit status.
#
#   scripts/run-fuzzers.sh BUILD [SECONDS_EACH]
#
# With KORVEL_FUZZ_BUDGET set (seconds for all targets together), each target
# gets an equal share of it instead, so adding a target keeps the run within
# the budget.
#
# For a long run give more seconds, e.g. 3600, or run one target by hand:
#   BUILD/fuzz/fuzz_texture_dictionary -max_total_time=3600 -jobs=2 DIR fuzz/corpus/fuzz_texture_dictionary
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:?usage: run-fuzzers.sh BUILD [SECONDS_EACH]}
seconds=${2:-30}
targets=("$build"/fuzz/fuzz_*)
if [ -n "${KORVEL_FUZZ_BUDGET:-}" ] && [ "${#targets[@]}" -gt 0 ]; then
  seconds=$((KORVEL_FUZZ_BUDGET / ${#targets[@]}))
fi

found=0
for target in "${targets[@]}"; do
  [ -x "$target" ] || continue
  found=1
  name=$(basename "$target")
  work="$build/fuzz-corpus/$name"
  mkdir -p "$work"
  seeds=()
  [ -d "fuzz/corpus/$name" ] && seeds=("fuzz/corpus/$name")
  echo "-- $name for ${seconds}s"
  log="$build/$name.log"
  status=0
  "$target" -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$build/" \
    "$work" "${seeds[@]}" >"$log" 2>&1 || status=$?
  # libFuzzer's own chatter stays in the log; the figures and any error show.
  grep -E "^(stat::number_of_executed_units|stat::new_units_added)|ERROR|SUMMARY" "$log" || true
  if [ "$status" -ne 0 ]; then
    tail -n 60 "$log" >&2
    echo "$name failed (exit $status); the input that did it is in $build/" >&2
    exit 1
  fi
done
[ "$found" -eq 1 ] || { echo "no fuzz targets in $build/fuzz" >&2; exit 1; }
