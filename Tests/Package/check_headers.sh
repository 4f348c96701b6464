#!/usr/bin/env bash
# Every public header compiles alone, as C++17 and without a warning.
#
#   check_headers.sh COMPILER FOLDER
set -euo pipefail
compiler=$1
folder=$2

if ! command -v "$compiler" >/dev/null; then
	echo "$compiler is not installed: skipped"
	exit 77
fi

count=0
for header in "$folder"/*.h; do
	for standard in c++17 c++20; do
		"$compiler" "-std=$standard" -Wall -Wextra -Wpedantic -Werror -fsyntax-only -x c++ "$header"
	done
	count=$((count + 1))
done
[ "$count" -gt 0 ]
echo "$count headers compile with $compiler"
