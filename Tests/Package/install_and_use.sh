#!/usr/bin/env bash
# Installs a build into a scratch prefix, moves the prefix, and uses it from there: the examples through find_package and
# through pkg-config, the program zortex, and a program that calls every exported name.
#
#   install_and_use.sh static|shared SOURCE BUILD SCRATCH COMPILER
#
# BUILD is a build of this project of that kind, with the program; one that does not exist is made, and kept from run to run.
set -euo pipefail
kind=$1
source=$2
build=$3
scratch=$4
compiler=$5

rm -rf "$scratch"
mkdir -p "$scratch/pkgconfig"
if [ ! -f "$build/CMakeCache.txt" ] || [ -f "$build/made_for_the_test" ]; then
	cmake -S "$source" -B "$build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O1 \
		-DBUILD_SHARED_LIBS="$([ "$kind" = shared ] && echo ON || echo OFF)" -DCMAKE_INSTALL_PREFIX=/usr/local -DCMAKE_INSTALL_LIBDIR=lib -DZORT_BUILD_TESTS=OFF
	touch "$build/made_for_the_test"
	cmake --build "$build"
fi
cmake --install "$build" --prefix "$scratch/installed" >/dev/null
prefix=$scratch/moved
mv "$scratch/installed" "$prefix"
libdir=$(dirname "$(find "$prefix" -name 'libZORTexLib.*' | head -1)")

case $kind in
static) test -f "$libdir/libZORTexLib.a" ;;
shared) test -f "$libdir/libZORTexLib.so" ;;
esac
version=$(sed -n 's/#define ZORTEXLIB_VERSION_STRING "\(.*\)"/\1/p' "$source/Library/Include/ZORTVersion.h")
test "$("$prefix/bin/zortex" --version)" = "zortex $version"

cmake -S "$source/Examples" -B "$scratch/examples" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$prefix"
grep -q "^ZORTexLib_DIR:.*=$prefix/" "$scratch/examples/CMakeCache.txt"
cmake --build "$scratch/examples"
bash "$source/Tests/Package/check_examples.sh" "$scratch/examples" "$scratch/files"

export PKG_CONFIG_PATH=$libdir/pkgconfig
export LD_LIBRARY_PATH=$libdir
test "$(pkg-config --modversion ZORTexLib)" = "$version"
static_flag=$([ "$kind" = static ] && echo --static || true)
for program in "$source"/Examples/*.cpp "$source/Tests/Package/every_export.cpp"; do
	# shellcheck disable=SC2046 # the flags are words
	"$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror "$program" -o "$scratch/pkgconfig/$(basename "$program" .cpp)" \
		$(pkg-config --cflags --libs $static_flag ZORTexLib)
done
bash "$source/Tests/Package/check_examples.sh" "$scratch/pkgconfig" "$scratch/files"
"$scratch/pkgconfig/every_export"
