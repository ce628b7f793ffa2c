#!/usr/bin/env bash
# Runs every scandeck-live-bench measurement in turn and prints the figures.
# Usage: bench/live-bench.sh [build directory, default build]
# Needs a display; without one it starts under xvfb-run. About six minutes.
set -euo pipefail
self="$(cd "$(dirname "$0")" && pwd)/$(basename "$0")"
build=$(cd "${1:-$(dirname "$0")/../build}" && pwd)
cd "$build"
if [[ -z "${DISPLAY:-}" ]]; then
  exec xvfb-run -a -s "-screen 0 1600x900x24" "$self" "$build"
fi
bench=./scandeck-live-bench
for model in Tern Wren_Plus; do
  "$bench" stream --model "$model" --rate 10 --seconds 30
done
for fault in drop corrupt junk; do
  for model in Tern Wren_Plus; do
    "$bench" stream --model "$model" --seconds 30 "--$fault" 0.05
  done
done
for model in Tern Wren_Plus; do
  "$bench" latency --model "$model" --seconds 20
done
# Ten minutes at ten revolutions a second.
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
for model in Tern Wren_Plus; do
  ./scandeck-sim --model "$model" --record "$tmp/$model.txt" --revolutions 6000 >/dev/null
  "$bench" open "$tmp/$model.txt"
done
