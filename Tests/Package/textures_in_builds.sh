#!/usr/bin/env bash
# The example project of textures in a build, with one generator: what is made, and what is made again after a change.
#
#   textures_in_builds.sh GENERATOR BUILD EXAMPLE SCRATCH     BUILD: a build of this project, which is installed and used
set -euo pipefail
generator=$1
build=$2
example=$3
scratch=$4

rm -rf "$scratch"
mkdir -p "$scratch"
cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cp -r "$example" "$scratch/source with spaces"
source="$scratch/source with spaces"
zortex=$scratch/prefix/bin/zortex
photo=$scratch/textures/colours/pictures/astronaut.ktx
wall=$scratch/textures/colours/pictures/walls/brick.ktx
normals=$scratch/textures/normals/pictures/walls/brick.zor

configure() {
	cmake -S "$source" -B "$scratch/textures" -G "$generator" -DCMAKE_PREFIX_PATH="$scratch/prefix" "$@" >/dev/null
}

make_textures() {
	cmake --build "$scratch/textures" --parallel 2 >"$scratch/log" 2>&1
}

# expect TEXTURE FORMAT LEVELS
expect() {
	"$zortex" info --json "$1" >"$scratch/info.json"
	grep -q "\"format\": *\"$2\"" "$scratch/info.json" && grep -q "\"mipLevels\": *$3\\b" "$scratch/info.json" || {
		echo "$1 is not $2 with $3 levels:"
		cat "$scratch/info.json"
		exit 1
	}
}

# expect_made TEXTURE...: a build makes exactly these again.
expect_made() {
	local before after made=""
	# Make's generator removes what a changed command made.
	before=$(stat -c '%n %y' "$photo" "$wall" "$normals" 2>/dev/null || true)
	make_textures
	after=$(stat -c '%n %y' "$photo" "$wall" "$normals")
	made=$(comm -13 <(sort <<<"$before") <(sort <<<"$after") | sed 's/ [0-9-]* [0-9:.]* [+-][0-9]*$//')
	if [ "$made" != "$(printf '%s\n' "$@" | sort | sed '/^$/d')" ]; then
		echo "made again: $made"
		echo "expected: $*"
		exit 1
	fi
}

configure
make_textures
expect "$photo" etc2-rgb 7
expect "$wall" etc2-rgb 7
expect "$normals" rgba8888 1

expect_made ''
cp "$source/pictures/walls/brick.png" "$source/pictures/astronaut.png"
expect_made "$photo"
cmp "$photo" "$wall"
configure
expect_made ''
configure -DCOLOUR_FORMAT=etc1
expect_made "$photo" "$wall"
expect "$photo" etc1 7
touch "$zortex"
expect_made "$photo" "$wall" "$normals"

# A picture that cannot be read stops the build, is named, and leaves its texture as it was.
echo nonsense >"$source/pictures/astronaut.png"
if make_textures; then
	echo "a damaged picture went unnoticed"
	exit 1
fi
grep -q 'zortex: .*astronaut.png' "$scratch/log"
expect "$photo" etc1 7
cp "$source/pictures/walls/brick.png" "$source/pictures/astronaut.png"
expect_made "$photo"

cmake --install "$scratch/textures" --prefix "$scratch/installed" >/dev/null
cmp "$photo" "$scratch/installed/share/textures/astronaut.ktx"
echo "textures are made once, and again for what has changed"
