#!/bin/sh
# Renders the icon sources to the PNGs that scandeck.qrc compiles in.
# Needs rsvg-convert (Debian: librsvg2-bin); run it after editing an SVG and
# commit the PNGs, so that building never needs the converter.
set -e
cd "$(dirname "$0")"
for svg in *.svg; do
    name=${svg%.svg}
    size=64
    [ "$name" = Tern_2 ] && size=256
    rsvg-convert -w "$size" -h "$size" -o "../images/$name.png" "$svg"
done
