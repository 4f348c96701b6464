#!/usr/bin/env bash
# Checks the house style: clang-format over every source, clang-tidy over every translation unit of the library and tools.
#
#   Scripts/lint.sh            everything
#   Scripts/lint.sh format     the layout alone, which is quick
set -euo pipefail
cd "$(dirname "$0")/.."

Scripts/setup.sh build lint

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
if [ "${1:-all}" = format ]; then
	exit 0
fi
cmake --preset release >/dev/null
git ls-files 'Library/*.cpp' 'Tools/*.cpp' | xargs -P "$(nproc)" -n 1 clang-tidy -p build/release --quiet
