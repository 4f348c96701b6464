#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite: once as released, and once under the address and
# undefined-behaviour sanitizers.
#
#   Scripts/test.sh            both
#   Scripts/test.sh release    one of them, by the name of its CMake preset
set -euo pipefail
cd "$(dirname "$0")/.."

Scripts/setup.sh build test

if [ $# -eq 0 ]; then
	set -- release asan
fi

jobs=$(nproc)
for preset in "$@"; do
	echo "== $preset"
	cmake --preset "$preset" >/dev/null
	cmake --build --preset "$preset" -j "$jobs"
	ctest --preset "$preset" -j "$jobs" --label-exclude slow --no-tests=error
done
