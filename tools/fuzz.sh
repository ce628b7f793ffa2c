#!/usr/bin/env bash
# Builds the fuzz targets (libFuzzer, AddressSanitizer, UndefinedBehavior-
# Sanitizer; build-sanitize/) and runs each for the given seconds (default
# 60), starting from its seeds in tests/fuzz/corpus/<name>. Inputs found on
# the way are kept in build-sanitize/corpus/<name>; anything a target finds
# (crash-*, leak-*, timeout-*, oom-*) lands in build-sanitize/findings/ and
# makes the script fail. Each finding becomes a regression test.
#   tools/fuzz.sh [seconds] [target...]      e.g. tools/fuzz.sh 30 fuzz_live_Tern
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build-sanitize"
seconds=${1:-60}
[[ $# -gt 0 ]] && shift
"$root/tools/sanitized-build.sh" scandeck_fuzzers

targets=("$@")
if [[ ${#targets[@]} -eq 0 ]]; then
  for program in "$build"/fuzz/fuzz_*; do
    targets+=("$(basename "$program")")
  done
fi

mkdir -p "$build/findings" "$build/logs"
failed=()
for target in "${targets[@]}"; do
  name=${target#fuzz_}
  work="$build/corpus/$name"
  log="$build/logs/$target.log"
  mkdir -p "$work"
  if "$build/fuzz/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
      -print_final_stats=1 -artifact_prefix="$build/findings/$target-" \
      "$work" "$root/tests/fuzz/corpus/$name" >"$log" 2>&1; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    echo "$target: clean, ${runs:-?} runs in ${seconds} s, corpus $(ls "$work" | wc -l) inputs"
  else
    echo "$target: FAILED (log: $log)"
    grep -E 'ERROR|check failed|runtime error|SUMMARY|Test unit written' "$log" | head -20 || true
    failed+=("$target")
  fi
done
if [[ ${#failed[@]} -gt 0 ]]; then
  echo "fuzzing found problems in: ${failed[*]}"
  exit 1
fi
