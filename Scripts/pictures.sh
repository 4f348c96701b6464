#!/usr/bin/env bash
# Draws one detail of the photograph in every format that colour pictures are compressed to, with bits a pixel and PSNR of the
# whole photograph. Of a codec's formats with the same result the first one is shown.
#
#   Scripts/pictures.sh [OUT.png] [QUALITY]     (default: Docs/images/formats.png, normal)
set -euo pipefail
cd "$(dirname "$0")/.."
out=${1:-Docs/images/formats.png}
quality=${2:-normal}
photo=Samples/astronaut.png
detail=96x96-192-76 # its size, and how far the photograph moves
side=192
columns=6

Scripts/setup.sh build demo
cmake --preset tools >/dev/null
cmake --build --preset tools -j "$(nproc)"
zortex=$PWD/build/tools/Tools/zortex/zortex
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# json NAME...: a value of the JSON text on standard input.
json() {
	python3 -c 'import functools, json, sys; print(functools.reduce(lambda value, name: value[name], sys.argv[1:], json.load(sys.stdin)))' "$@"
}

# line TEXT: a line of text as wide as a tile.
line() {
	pbmtext -builtin fixed "$1" | pnmcrop -white -left -top -bottom 2>/dev/null | pnmpad -white -width "$side" -halign 0 -top 3 -bottom 3 2>/dev/null |
		pamcut -left 0 -width "$side"
}

# tile TEXTURE LABEL SECOND_LABEL: the detail with two lines below, as the next file of the picture.
count=0
tile() {
	"$zortex" convert --quiet "$1" "$work/tile.png" --canvas "$detail" --resize "${side}x$side" --filter nearest
	pngtopnm "$work/tile.png" >"$work/tile.ppm" 2>/dev/null
	line "$2" >"$work/first.pbm"
	line "$3" >"$work/second.pbm"
	pnmcat -topbottom -white "$work/tile.ppm" "$work/first.pbm" "$work/second.pbm" >"$work/body.ppm"
	pnmpad -white -left 4 -right 4 -top 4 "$work/body.ppm" >"$work/$(printf %03d "$count").ppm"
	count=$((count + 1))
}

tile "$photo" photograph '24 bits a pixel'
formats=$("$zortex" formats --json | python3 -c '
import json, sys
for row in json.load(sys.stdin)["compressed"]:
    if row["encoded"] and row["block"][2] == 1 and row["channels"] in ("rgb", "rgba"):
        print(row["name"], row["codec"])')
shown=
while read -r format codec; do
	"$zortex" convert "$photo" "$work/texture.zor" --format "$format" --quality "$quality" --json >"$work/report.json"
	bits=$(json output bitsPerPixel <"$work/report.json")
	psnr=$(json psnr db <"$work/report.json")
	if [[ $shown != *"[$codec $bits $psnr]"* ]]; then
		shown+="[$codec $bits $psnr]"
		tile "$work/texture.zor" "$format" "$(printf '%.3g bits, %.1f dB' "$bits" "$psnr")"
	fi
done <<<"$formats"

for ((first = 0; first < count; first += columns)); do
	row=()
	for ((i = first; i < count && i < first + columns; ++i)); do
		row+=("$work/$(printf %03d "$i").ppm")
	done
	pnmcat -leftright -white "${row[@]}" >"$work/row$(printf %03d "$first").ppm"
done
pnmcat -topbottom -white -jleft "$work"/row*.ppm | pnmtopng >"$out" 2>/dev/null
echo "$out: $count pictures"
