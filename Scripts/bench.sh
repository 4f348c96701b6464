#!/usr/bin/env bash
# Builds the benchmarks, runs them and prints a table of megapixels per second.
#
#   Scripts/bench.sh [FILTER]     FILTER: a regular expression over the names, such as 'tessel|resize'
set -euo pipefail
cd "$(dirname "$0")/.."

Scripts/setup.sh build bench

cmake --preset bench >/dev/null
cmake --build --preset bench -j "$(nproc)" --target zort_benchmarks
mkdir -p out
build/bench/Benchmarks/zort_benchmarks --benchmark_filter="${1:-.}" --benchmark_out=out/benchmarks.json --benchmark_out_format=json >/dev/null
python3 Benchmarks/table.py out/benchmarks.json
