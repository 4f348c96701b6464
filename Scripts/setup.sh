#!/usr/bin/env bash
# Installs the packages that the project needs, and of these just what is missing.
#
#   Scripts/setup.sh [build] [demo] [test] [bench] [lint]     (default: build test)
#
# Works with apt, as root or with sudo at hand. Without either it names what is missing and fails.
set -euo pipefail

declare -A packages=(
	[build]="g++ cmake ninja-build libcli11-dev libpng-dev nlohmann-json3-dev libastcenc-dev"
	[demo]="netpbm"
	[test]="libgtest-dev clang python3 pkg-config make imagemagick python3-pil astcenc libegl-dev libgles-dev libgl1-mesa-dri doxygen dpkg-dev groff-base zsh mmdebstrap slurm-wlm munge"
	[bench]="libbenchmark-dev libsquish-dev python3"
	[lint]="clang-format clang-tidy"
)

if [ $# -eq 0 ]; then
	set -- build test
fi

missing=()
for group in "$@"; do
	if [ -z "${packages[$group]:-}" ]; then
		echo "setup.sh: no group of packages is named '$group' (there are: ${!packages[*]})" >&2
		exit 2
	fi
	for package in ${packages[$group]}; do
		if ! dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed'; then
			missing+=("$package")
		fi
	done
done

if [ ${#missing[@]} -eq 0 ]; then
	exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
	as_root=()
elif command -v sudo >/dev/null; then
	as_root=(sudo)
else
	echo "setup.sh: these packages are missing, and neither root nor sudo is at hand to install them: ${missing[*]}" >&2
	exit 1
fi

echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
