#!/usr/bin/env bash
# Times scandeck-cli on a 10-minute recording of a simulated lidar (6,000
# revolutions at 600 r/min): converting it to CSV, PCD, PLY and a ROS bag (points per
# second and peak memory from /usr/bin/time -v), and reading it against
# reading a pcap capture of the same packets (packets per second).
#
#   bench/export-bench.sh [build dir] [model]     (default: build Wren_Plus)
set -euo pipefail
build=$(cd "${1:-build}" && pwd)
model=${2:-Wren_Plus}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$build/scandeck-sim" --model "$model" --record "$work/rec.txt" --revolutions 6000 >/dev/null
"$build/scandeck-capture-bench" --capture-of "$work/rec.txt" "$work/rec.pcap" >/dev/null

# Runs a command under /usr/bin/time; sets seconds, peak_mb and out.
timed() {
    /usr/bin/time -v -o "$work/time" "$@" >"$work/out"
    seconds=$(awk -F': ' '/Elapsed \(wall clock\)/ { n = split($2, t, ":"); s = 0;
        for (i = 1; i <= n; i++) s = s * 60 + t[i]; print s }' "$work/time")
    peak_mb=$(awk -F': ' '/Maximum resident set size/ { printf "%.1f", $2 / 1024 }' "$work/time")
    out=$(cat "$work/out")
}

rate() { awk -v n="$1" -v s="$2" 'BEGIN { printf "%.0f", (s > 0 ? n / s : 0) }'; }

echo "10-minute $model recording: $(du -h "$work/rec.txt" | cut -f1) on disk, pcap $(du -h "$work/rec.pcap" | cut -f1)"
echo
printf "%-26s %9s %14s %10s %10s\n" "convert to" "seconds" "points/s" "peak MB" "output"
for format in "csv" "pcd" "pcd --merge" "pcd --ascii --merge" "ply" "ply --merge" "bag"; do
    target="$work/out.${format// /_}"
    # shellcheck disable=SC2086
    timed "$build/scandeck-cli" convert "$work/rec.txt" -o "$target" --format $format
    points=$(grep -o '[0-9]* points' <<<"$out" | cut -d' ' -f1)
    printf "%-26s %9.2f %14s %10s %10s\n" "$format" "$seconds" "$(rate "$points" "$seconds")" "$peak_mb" \
        "$(du -sh "$target" | cut -f1)"
    rm -rf "$target"
done

# The same frames from the capture, which is read as a stream.
timed "$build/scandeck-cli" convert "$work/rec.pcap" --model "$model" -o "$work/cap.csv"
points=$(grep -o '[0-9]* points' <<<"$out" | cut -d' ' -f1)
printf "%-26s %9.2f %14s %10s %10s\n" "csv, from the pcap" "$seconds" "$(rate "$points" "$seconds")" "$peak_mb" \
    "$(du -sh "$work/cap.csv" | cut -f1)"
rm -f "$work/cap.csv"

echo
printf "%-26s %9s %14s %10s\n" "read (scandeck-cli info)" "seconds" "packets/s" "peak MB"
timed "$build/scandeck-cli" info "$work/rec.txt"
packets=$(awk '/^packets:/ { print $2 }' <<<"$out")
printf "%-26s %9.2f %14s %10s\n" "recording" "$seconds" "$(rate "$packets" "$seconds")" "$peak_mb"
timed "$build/scandeck-cli" info "$work/rec.pcap" --model "$model"
packets=$(awk '/^datagrams:/ { print $2 }' <<<"$out")
printf "%-26s %9.2f %14s %10s\n" "pcap capture" "$seconds" "$(rate "$packets" "$seconds")" "$peak_mb"
