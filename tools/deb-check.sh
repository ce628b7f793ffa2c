#!/usr/bin/env bash
# Makes the .deb in the build folder (cpack -G DEB), installs it with apt,
# runs the installed scandeck-cli and starts the installed viewer headless
# from another folder with a home of its own (where it must make the
# operator's settings file), stops it with SIGTERM as a desktop session would
# and removes the package again. Needs root or sudo; CI runs it after the tests.
#
#   tools/deb-check.sh [build dir]     (default: build)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
sudo=""
[[ $(id -u) -eq 0 ]] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
work=$(mktemp -d)
cleanup() {
    $sudo apt-get remove -y -qq scandeck >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap cleanup EXIT

cd "$build"
rm -f scandeck_*.deb
cpack -G DEB >/dev/null
deb=$(echo scandeck_*.deb)
echo "deb-check: $deb ($(du -h "$deb" | cut -f1))"
$sudo apt-get install -y -qq "./$deb" >/dev/null

mkdir -p "$work/home" "$work/elsewhere"
cd "$work/elsewhere"
[[ $(command -v scandeck-cli) == /usr/bin/scandeck-cli ]]
scandeck-cli --help >/dev/null
echo "deb-check: the installed scandeck-cli --help runs"

# The viewer under a virtual display: up for a few seconds, then SIGTERM,
# which it answers by closing its window; it must end with status 0.
HOME="$work/home" XDG_CONFIG_HOME="" xvfb-run -a -s "-screen 0 1280x800x24" sh -c '
    scandeck & viewer=$!
    waited=0
    while [ ! -f "$HOME/.config/scandeck/connect_type.ini" ] && [ $waited -lt 60 ]; do
        sleep 0.5; waited=$((waited + 1))
    done
    sleep 2
    kill -TERM $viewer
    wait $viewer'
cmp -s "$work/home/.config/scandeck/connect_type.ini" /usr/share/scandeck/ini/connect_type.ini
[[ -z $(ls -A "$work/elsewhere") ]]
echo "deb-check: the installed viewer started in $work/elsewhere, made the operator's settings file and closed"

$sudo apt-get remove -y -qq scandeck >/dev/null
[[ ! -e /usr/bin/scandeck && ! -e /usr/share/scandeck ]]
echo "deb-check: removed"
