#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test through CTest.
# Tests that open a window run under xvfb-run when there is no display.
set -euo pipefail
root=$(cd "$(dirname "$0")" && pwd)
"$root/tools/install-deps.sh"
"$root/tools/build.sh"
cd "$root/build"
ctest --output-on-failure --timeout 600 "$@"
