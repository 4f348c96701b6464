#!/usr/bin/env python3
"""Prints the results of the benchmarks as a Markdown table of megapixels per second.

usage: table.py RESULTS.json
"""

import json
import sys


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    with open(sys.argv[1], encoding="utf-8") as file:
        results = json.load(file)
    print("| benchmark | ms | megapixels/s |")
    print("|---|---:|---:|")
    failed = []
    for row in results["benchmarks"]:
        if row.get("error_occurred"):
            failed.append(f"{row['name']}: {row['error_message']}")
            continue
        rate = row["items_per_second"] / 1e6
        print(f"| {row['name']} | {row['real_time']:.2f} | {rate:.{2 if rate >= 1 else 3}f} |")
    for line in failed:
        print(f"failed: {line}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
