#!/usr/bin/env bash
# Makes the Debian packages and looks into them: what each holds and depends on; an example is built against what they hold.
#
#   debian_packages.sh SOURCE BUILD SCRATCH COMPILER     BUILD: the build that install_and_use.sh has made
set -euo pipefail
source=$1
build=$2
scratch=$3
compiler=$4

for tool in dpkg-architecture dpkg-shlibdeps; do
	command -v "$tool" >/dev/null || {
		echo "$tool is not installed: skipped"
		exit 77
	}
done
multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
architecture=$(dpkg --print-architecture)
version=$(sed -n 's/#define ZORTEXLIB_VERSION_STRING "\(.*\)"/\1/p' "$source/Library/Include/ZORTVersion.h")
runtime=libzortexlib${version%.*}

rm -rf "$scratch"
mkdir -p "$scratch"
cmake -S "$source" -B "$build" -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_INSTALL_LIBDIR="lib/$multiarch" >/dev/null
cmake --build "$build" >/dev/null
(cd "$build" && cpack -B "$scratch/packages" >"$scratch/log" 2>&1) || {
	cat "$scratch/log"
	exit 1
}

# expect PACKAGE DEPENDS FILE...: the package depends on these (a pattern) and holds the files.
expect() {
	local file=$scratch/packages/$1_${version}_$architecture.deb depends=$2 path
	dpkg-deb -f "$file" Depends >"$scratch/depends"
	grep -Eq "$depends" "$scratch/depends" || {
		echo "$1 depends on: $(cat "$scratch/depends")"
		exit 1
	}
	dpkg-deb -c "$file" | awk '{ print $6 }' >"$scratch/contents"
	for path in "${@:3}" "usr/share/doc/$1/copyright"; do
		grep -Fxq "./$path" "$scratch/contents" || {
			echo "$1 lacks $path:"
			cat "$scratch/contents"
			exit 1
		}
	done
	dpkg-deb -x "$file" "$scratch/root"
}

expect "$runtime" 'libc6.*libstdc\+\+6' "usr/lib/$multiarch/libZORTexLib.so.$version" "usr/lib/$multiarch/libZORTexLib.so.${version%.*}"
expect libzortexlib-dev "$runtime \\(= $version\\)" "usr/lib/$multiarch/libZORTexLib.so" usr/include/ZORTexLib/ZORTexLib.h \
	"usr/lib/$multiarch/pkgconfig/ZORTexLib.pc" "usr/lib/$multiarch/cmake/ZORTexLib/ZORTexLibConfig.cmake" \
	usr/share/doc/libzortexlib-dev/examples/inspect.cpp
expect zortex "$runtime \\(= $version\\).*libpng16" usr/bin/zortex usr/share/man/man1/zortex.1 \
	usr/share/bash-completion/completions/zortex
if [ -f "$build/Tools/astcenc/astcenc" ]; then
	expect zortex libastcenc usr/libexec/ZORTexLib/astcenc
fi
test "$(find "$scratch/packages" -maxdepth 1 -name '*.deb' | wc -l)" = 3

usr=$scratch/root/usr
export LD_LIBRARY_PATH=$usr/lib/$multiarch
test "$("$usr/bin/zortex" --version)" = "zortex $version"
cmake -S "$usr/share/doc/libzortexlib-dev/examples" -B "$scratch/examples" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
	-DCMAKE_PREFIX_PATH="$usr" >/dev/null
cmake --build "$scratch/examples" --target mip_chain >/dev/null
"$scratch/examples/mip_chain" "$scratch/rings.zor"
