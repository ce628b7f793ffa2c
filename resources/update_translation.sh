#!/bin/sh
# Collects the user-visible texts of the viewer into scandeck_zh.ts (new ones
# arrive untranslated; translate them with Qt Linguist or by hand). The build
# compiles the file into scandeck_zh.qm next to the programs.
set -e
cd "$(dirname "$0")"
dirs=""
for d in connect app analysis playback export display measure device widgets lidar; do
    [ -d "../$d" ] && dirs="$dirs ../$d"
done
lupdate -no-obsolete -locations relative -target-language zh_CN $dirs -ts scandeck_zh.ts
