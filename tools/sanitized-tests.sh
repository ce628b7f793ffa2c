#!/usr/bin/env bash
# Runs the core, decoder and command-line tests built with AddressSanitizer
# and UndefinedBehaviorSanitizer (build-sanitize/, see sanitized-build.sh).
# Any finding fails the test that made it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
tests=(tst_session tst_record_file tst_file_sync tst_frame_index tst_factory tst_capture tst_decoder_conformance
       tst_model_decoders tst_model_descriptors tst_packet_angles tst_cli tst_bag tst_progress tst_frame_health
       tst_stream_health_cli)
"$root/tools/sanitized-build.sh" "${tests[@]}" scandeck-cli
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1:${ASAN_OPTIONS:-}"
export UBSAN_OPTIONS="print_stacktrace=1:${UBSAN_OPTIONS:-}"
cd "$root/build-sanitize"
ctest --output-on-failure --timeout 600 -R "^($(IFS='|'; echo "${tests[*]}"))\$"
