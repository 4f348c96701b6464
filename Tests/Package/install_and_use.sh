#!/usr/bin/env bash
# Installs the library into a scratch prefix and uses it from there: the examples through find_package, one of them
# through pkg-config, and a program that calls every exported name.
#
#   install_and_use.sh static|shared SOURCE SCRATCH COMPILER
set -euo pipefail
kind=$1
source=$2
scratch=$3
compiler=$4

prefix=$scratch/prefix
rm -rf "$prefix" "$scratch/examples"

# Kept from run to run, so that only what has changed is compiled again.
cmake -S "$source" -B "$scratch/library" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O1 \
	-DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib -DBUILD_SHARED_LIBS="$([ "$kind" = shared ] && echo ON || echo OFF)" \
	-DZORT_BUILD_TESTS=OFF -DZORT_BUILD_TOOLS=OFF
cmake --build "$scratch/library"
cmake --install "$scratch/library" >/dev/null

case $kind in
static) test -f "$prefix/lib/libZORTexLib.a" ;;
shared) test -f "$prefix/lib/libZORTexLib.so" ;;
esac

use() {
	"$1/compress" "$scratch/picture.zor"
	"$1/inspect" "$scratch/picture.zor"
}

cmake -S "$source/Examples" -B "$scratch/examples" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$prefix"
cmake --build "$scratch/examples"
use "$scratch/examples"

export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
export LD_LIBRARY_PATH=$prefix/lib
static_flag=$([ "$kind" = static ] && echo --static || true)
mkdir -p "$scratch/pkgconfig"
for program in "$source/Examples/inspect.cpp" "$source/Examples/compress.cpp" "$source/Tests/Package/every_export.cpp"; do
	# shellcheck disable=SC2046 # the flags are words
	"$compiler" -std=c++17 -Wall -Wextra -Wpedantic -Werror "$program" -o "$scratch/pkgconfig/$(basename "$program" .cpp)" \
		$(pkg-config --cflags --libs $static_flag ZORTexLib)
done
use "$scratch/pkgconfig"
"$scratch/pkgconfig/every_export"
