#!/usr/bin/env bash
# Builds the session, record-file, registry, decoder, CLI and simulator
# tests (and the programs they run) with ThreadSanitizer in build-tsan/,
# without the viewer, and runs them. Any data race fails the run.
# Usage: tools/tsan.sh [extra ctest arguments]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${SCANDECK_TSAN_BUILD:-$root/build-tsan}
jobs=$(nproc 2>/dev/null || echo 2)
tests=(tst_session tst_record_file tst_file_sync tst_frame_index tst_frame_health tst_factory tst_decoder_conformance tst_model_decoders tst_cli
       tst_sim_engine tst_sim_end_to_end tst_stream_health_cli)

if [[ ! -f "$build/CMakeCache.txt" ]]; then
  cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSCANDECK_GUI=OFF \
    -DCMAKE_CXX_FLAGS="-fsanitize=thread -fno-omit-frame-pointer" \
    -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=thread" >/dev/null
fi
cmake --build "$build" -j"$jobs" --target "${tests[@]}" scandeck-cli scandeck-sim -- --no-print-directory \
  2>&1 | grep -vE '^\[ *[0-9]+%\]|^Consolidate|^-- ' || true
cmake --build "$build" -j"$jobs" --target "${tests[@]}" scandeck-cli scandeck-sim >/dev/null

# Qt itself is not instrumented: its own accesses are not checked, and
# tools/tsan.supp names the few places where its event queue hands data
# between threads unseen.
export TSAN_OPTIONS="halt_on_error=0 exitcode=66 ignore_noninstrumented_modules=1 second_deadlock_stack=1 suppressions=$root/tools/tsan.supp ${TSAN_OPTIONS:-}"
cd "$build"
regex=$(IFS='|'; echo "^(${tests[*]})\$")
ctest --output-on-failure --timeout 900 -R "$regex" "$@"
