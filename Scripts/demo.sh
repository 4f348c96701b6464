#!/usr/bin/env bash
# The library's main job, seen: sets up, builds zortex, compresses a photograph to a Tessel texture, decodes it again,
# and leaves the texture and two pictures in out/demo.
set -euo pipefail
cd "$(dirname "$0")/.."

Scripts/setup.sh build demo

cmake --preset tools >/dev/null
cmake --build --preset tools -j "$(nproc)"
zortex=build/tools/Tools/zortex/zortex

photo=Samples/astronaut.png
out=out/demo
mkdir -p "$out"

echo
echo "Compressing $photo to 4 bits a pixel:"
"$zortex" convert "$photo" "$out/astronaut.zor" --format tessel1-4bpp-rgb --quality 1
echo
echo "What the texture file says of itself:"
"$zortex" info "$out/astronaut.zor"
"$zortex" convert --quiet "$out/astronaut.zor" "$out/astronaut-decoded.png"

# The photograph on the left, the decoded texture on the right.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
pngtopnm "$photo" >"$work/left.ppm" 2>/dev/null
pngtopnm "$out/astronaut-decoded.png" >"$work/right.ppm"
pnmcat -leftright "$work/left.ppm" "$work/right.ppm" | pnmtopng >"$out/side-by-side.png" 2>/dev/null

echo
echo "Left for you:"
for file in astronaut.zor astronaut-decoded.png side-by-side.png; do
	printf '  %8d bytes  %s\n' "$(stat -c %s "$out/$file")" "$out/$file"
done
