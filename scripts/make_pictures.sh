#!/usr/bin/env bash
# Draws the buttons' pictures in src/resources/pictures, and the installer's in setup, anew from the SVGs beside them. The
# results are kept in the tree, since a build on Windows has no such tools; what is missing here is installed.
set -eu
cd "$(dirname "$0")/.."
scripts/install_packages.sh librsvg2-bin icoutils
cd src/resources/pictures
pngs=$(mktemp -d)
trap 'rm -rf "$pngs"' EXIT

# What is transparent becomes magenta: the strips have hard edges, since a blend of both would show as a pink fringe.
draw_strip() { # name, ImageMagick's type (Palette: 8 bits per pixel), its options for the colours
    local name=$1 type=$2
    rsvg-convert "$name.svg" -o "$pngs/$name.png"
    convert "$pngs/$name.png" "${@:3}" \
        -background '#ff00ff' -alpha remove -alpha off -compress None -type "$type" BMP3:"$name.bmp"
}
draw_strip button_continue TrueColor
draw_strip button_restore TrueColor
# Fewer colours than a palette holds: magenta joins them.
draw_strip button_web Palette -dither None -colors 200

# The sizes of a small icon at 96, 120, 144 and 192 dots per inch, none of them a PNG, which Windows XP does not read.
for name in dlg_close dlg_close_hover dlg_minimize dlg_minimize_hover; do
    for size in 16 20 24 32; do
        rsvg-convert -w $size -h $size "$name.svg" -o "$pngs/$size.png"
    done
    icotool -c -b 32 -o "$name.ico" "$pngs"/{16,20,24,32}.png
done

cd ../../../setup
rsvg-convert finish.svg -o "$pngs/finish.png"
convert "$pngs/finish.png" -alpha off -compress None -type Palette -dither None -colors 64 BMP3:finish.bmp
