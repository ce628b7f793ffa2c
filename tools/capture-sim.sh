#!/usr/bin/env bash
# Captures a simulated lidar's stream on the loopback with tcpdump while
# 'scandeck-cli listen' records the same stream, then checks that the
# capture converts to the same CSV as the recording. By hand only (tcpdump
# needs the right to capture: root or CAP_NET_RAW); CI never captures.
#
#   tools/capture-sim.sh [build dir] [model] [frames]   (default: build Tern 20)
set -euo pipefail
build=$(cd "${1:-build}" && pwd)
model=${2:-Tern}
frames=${3:-20}
port=${PORT:-32368}
work=$(mktemp -d)
trap 'kill "$dump" 2>/dev/null || true; rm -rf "$work"' EXIT

tcpdump -i lo -U -w "$work/sim.pcap" "udp dst port $port" 2>"$work/tcpdump.log" &
dump=$!
sleep 1
"$build/scandeck-cli" listen --model "$model" --udp "127.0.0.1:$port" --frames "$frames" --timeout 30 \
    --record "$work/listen.txt" >/dev/null &
listen=$!
sleep 0.5
"$build/scandeck-sim" --model "$model" --udp "127.0.0.1:$port" --command-port 0 --seconds $((frames / 10 + 3)) \
    2>/dev/null
wait "$listen"
sleep 0.5
kill -INT "$dump"
wait "$dump" || true

firmware=()
[[ "$model" == Tern_P ]] && firmware=(--firmware 215)  # the simulator's default firmware
"$build/scandeck-cli" info "$work/sim.pcap" --model "$model" --port "$port" "${firmware[@]}"
"$build/scandeck-cli" convert "$work/sim.pcap" --model "$model" --port "$port" "${firmware[@]}" \
    -o "$work/capture.csv" >/dev/null
"$build/scandeck-cli" convert "$work/listen.txt" -o "$work/listen.csv" >/dev/null
# The recording stops after its frames; the capture runs on: compare those.
awk -F, -v n="$frames" 'NR == 1 || $1 <= n' "$work/capture.csv" >"$work/capture-first.csv"
if cmp -s "$work/capture-first.csv" "$work/listen.csv"; then
    echo "The capture gives the same $frames frames as the recording ($(wc -l <"$work/listen.csv") CSV lines)."
else
    echo "The capture and the recording differ:" >&2
    diff "$work/capture-first.csv" "$work/listen.csv" | head -5 >&2
    exit 1
fi
