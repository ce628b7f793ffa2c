#!/usr/bin/env bash
# Configures (once) and builds the given targets in build-sanitize/: clang
# with AddressSanitizer and UndefinedBehaviorSanitizer, the libFuzzer
# targets, no viewer. The normal build in build/ (g++) is not touched.
#   tools/sanitized-build.sh <target...>
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="$root/build-sanitize"
jobs=$(nproc 2>/dev/null || echo 2)
if [[ ! -f "$build/CMakeCache.txt" ]]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DSCANDECK_GUI=OFF -DSCANDECK_FUZZ=ON >/dev/null
fi
cmake --build "$build" -j"$jobs" --target "$@" -- --no-print-directory 2>&1 \
  | grep -vE '^\[ *[0-9]+%\]|^Consolidate|^-- ' || true
# grep swallowed the exit status: check the build really succeeded.
cmake --build "$build" -j"$jobs" --target "$@" >/dev/null
