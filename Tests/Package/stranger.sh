#!/usr/bin/env bash
# A stranger with a bare Debian system follows the README: installs the packages made by debian_packages.sh, runs the
# program, compiles an example. The bare system is made anew from this machine's package sources, and thrown away.
#
#   stranger.sh SOURCE PACKAGES SCRATCH
set -euo pipefail
source=$1
packages=$2
scratch=$3

skip() {
	echo "$1: skipped"
	exit 77
}
[ "$(id -u)" = 0 ] || skip "not root, so that no bare system can be made"
command -v mmdebstrap >/dev/null || skip "mmdebstrap is not installed"
suite=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
[ -n "$suite" ] || skip "this system names no suite"

sources=()
for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
	if [ -f "$file" ] && grep -qv '^ *\(#\|$\)' "$file"; then
		sources+=("$file")
	fi
done

# What the README says, in the order of a reader. Each command must stand there.
promise() {
	grep -Fq -- "$1" "$source/README.md" || {
		echo "the README does not say: $1"
		exit 1
	}
}
promise 'apt-get install ./build/package/*.deb'
promise 'zortex convert photo.png photo.ktx'
promise 'c++ app.cpp $(pkg-config --cflags --libs --static ZORTexLib)'
promise '[Examples](Examples)'

rm -rf "$scratch"
mkdir -p "$scratch/build/package"
cp "$packages"/*.deb "$scratch/build/package"
cp "$source/Samples/astronaut.png" "$scratch/photo.png"
cat >"$scratch/follow.sh" <<'INSIDE'
set -eux
cd /root/stranger
apt-get install -y --no-install-recommends ./build/package/*.deb >/dev/null
zortex --version
zortex convert photo.png photo.ktx --resize 512x512 --mips --format etc2-rgba --quality 0
zortex info photo.ktx
if [ -f /usr/libexec/ZORTexLib/astcenc ]; then
	zortex convert photo.png photo.astc --format astc-6x6 --quality fast
fi
test -f /usr/share/man/man1/zortex.1
apt-get install -y --no-install-recommends g++ pkg-config >/dev/null
for example in inspect measure; do
	cp "/usr/share/doc/libzortexlib-dev/examples/$example.cpp" app.cpp
	c++ app.cpp $(pkg-config --cflags --libs --static ZORTexLib) -o "$example"
done
./inspect photo.ktx | grep VK_FORMAT_ETC2_R8G8B8A8_SRGB_BLOCK
./measure photo.ktx photo.ktx
apt-get remove -y zortex libzortexlib-dev >/dev/null
test ! -e /usr/bin/zortex
INSIDE

export TMPDIR=$scratch
mmdebstrap --quiet --variant=minbase "$suite" /dev/null "${sources[@]}" \
	--customize-hook="mkdir -p \"\$1/root/stranger\"" \
	--customize-hook="copy-in '$scratch/build' '$scratch/photo.png' '$scratch/follow.sh' /root/stranger" \
	--customize-hook='chroot "$1" sh /root/stranger/follow.sh'
