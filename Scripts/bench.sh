#!/usr/bin/env bash
# Builds the benchmarks, runs them and prints a table of megapixels per second and of multiples of the yardstick.
#
#   Scripts/bench.sh [--against REVISION] [FILTER]
#
#   FILTER       a regular expression over the names, such as 'tessel|resize'
#   --against    runs the same benchmarks with the library of an older revision too, one after the other, and adds its column
set -euo pipefail
cd "$(dirname "$0")/.."

against=
if [ "${1:-}" = --against ]; then
	against=$(git rev-parse --verify "${2:?--against needs a revision}^{commit}")
	shift 2
fi
filter="^yardstick|${1:-.}"

Scripts/setup.sh build bench
mkdir -p out
# The yardstick runs on one thread, like all others.
export OMP_NUM_THREADS=1

# run_benchmarks BUILD_FOLDER RESULTS
run_benchmarks()
{
	"$1/Benchmarks/zort_benchmarks" --benchmark_filter="$filter" --benchmark_out="$2" --benchmark_out_format=json >/dev/null
}

cmake --preset bench >/dev/null
cmake --build --preset bench -j "$(nproc)" --target zort_benchmarks >/dev/null
results=(out/benchmarks.json)
if [ -n "$against" ]; then
	# The older library under the present benchmarks.
	older="$PWD/build/bench-$against"
	rm -rf "$older/source"
	git worktree prune
	git worktree add --quiet --force --detach "$older/source" "$against"
	rm -rf "$older/source/Benchmarks"
	cp -r Benchmarks "$older/source/Benchmarks"
	(cd "$older/source" && cmake --preset bench -B "$older/build" >/dev/null)
	cmake --build "$older/build" -j "$(nproc)" --target zort_benchmarks >/dev/null
	run_benchmarks "$older/build" out/benchmarks-before.json
	git worktree remove --force "$older/source"
	results+=(out/benchmarks-before.json)
fi
run_benchmarks build/bench out/benchmarks.json
python3 Benchmarks/table.py "${results[@]}"
