#!/usr/bin/env bash
# Draws setup.ico, the icon of the product, in all usual sizes: a screen that records.
# Needs ImageMagick. The drawing is kept beside this file; run it again only to change it.
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

convert -size 1024x1024 xc:none \
  -fill '#1d3557' -draw 'roundrectangle 40,120 984,760 70,70' \
  -fill '#a8dadc' -draw 'roundrectangle 110,190 914,690 30,30' \
  -fill '#f1faee' -draw 'polygon 110,690 110,400 400,190 620,190' \
  -fill '#1d3557' -draw 'rectangle 430,760 594,860' \
  -fill '#1d3557' -draw 'roundrectangle 270,850 754,920 35,35' \
  -fill '#ffffff' -draw 'circle 720,640 720,400' \
  -fill '#e63946' -draw 'circle 720,640 720,440' \
  "$work/large.png"

for size in 16 24 32 48 64 128 256; do
  convert "$work/large.png" -filter Lanczos -resize "${size}x${size}" -strip "$work/$size.png"
done
convert "$work"/{16,24,32,48,64,128,256}.png -strip setup.ico
