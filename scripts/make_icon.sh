#!/usr/bin/env bash
# Draws src/resources/tessaly.ico and tessaly_small.ico, the library's, anew from the SVGs beside them.
# The results are kept in the tree, since a build on Windows has no such tools. Needs rsvg-convert (librsvg2-bin) and icotool (icoutils).
set -eu
cd "$(dirname "$0")/../src/resources"
pngs=$(mktemp -d)
trap 'rm -rf "$pngs"' EXIT

# A scaled mosaic blurs at small sizes: those are drawn on their own pixels.
for size in 16 20 24; do
    rsvg-convert -w $size -h $size tessaly_$size.svg -o "$pngs/$size.png"
done
for size in 32 48 64 128 256; do
    rsvg-convert -w $size -h $size tessaly.svg -o "$pngs/$size.png"
done
# Windows XP reads no PNG inside an icon: only the largest, which it does not use, is one.
icotool -c -b 32 -o tessaly.ico "$pngs"/{16,20,24,32,48,64,128}.png --raw="$pngs/256.png"
icotool -c -b 32 -o tessaly_small.ico "$pngs"/{16,20,24,32,48,64}.png
