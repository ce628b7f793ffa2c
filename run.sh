#!/usr/bin/env bash
# Installs what is missing, builds, and starts the viewer on its built-in
# simulated lidar. Extra arguments go to the viewer (e.g. --demo Wren_Plus).
set -euo pipefail
root=$(cd "$(dirname "$0")" && pwd)
"$root/tools/install-deps.sh"
"$root/tools/build.sh"
cd "$root/build"
if [[ -x ./scandeck ]]; then
  [[ $# -gt 0 ]] || set -- --demo
  exec ./scandeck "$@"
fi
exec ./scandeck-cli --help
