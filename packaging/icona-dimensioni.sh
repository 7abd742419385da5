#!/usr/bin/env bash
# Redraws docs/icona-dimensioni.png: the icon at each installed size, at its own pixels, on a light
# and on a dark panel, to judge by eye whether it still reads at 16 px after a change to the SVG.
# By hand only, not part of the build: needs rsvg-convert (librsvg2-bin) and ImageMagick's convert
# (apt-get install imagemagick).
set -euo pipefail
cd "$(dirname "$0")/.."
svg=packaging/it.valorimetrico.Valorimetrico.svg
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
sizes=(16 22 24 32 48 64 128 256)
for panel in light dark; do
  if [[ $panel == light ]]; then background='#f4f4f4' text='#333333'; else background='#2b2b2b' text='#dddddd'; fi
  cells=()
  for size in "${sizes[@]}"; do
    rsvg-convert --width="$size" --height="$size" --output "$tmp/$size.png" "$svg"
    width=$((size < 64 ? 88 : size + 32))
    convert -size "${width}x310" "xc:$background" "$tmp/$size.png" -gravity center -geometry +0-16 -composite \
      -font DejaVu-Sans -pointsize 16 -fill "$text" -gravity south -annotate +0+10 "$size px" "$tmp/$panel-$size.png"
    cells+=("$tmp/$panel-$size.png")
  done
  convert "${cells[@]}" +append "$tmp/$panel.png"
done
convert "$tmp/light.png" "$tmp/dark.png" -append -strip -depth 8 docs/icona-dimensioni.png
