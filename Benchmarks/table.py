#!/usr/bin/env python3
"""Prints the results of the benchmarks as a Markdown table: megapixels per second of processor time, and the multiple of the yardstick.

usage: table.py RESULTS.json [BEFORE.json]

BEFORE.json holds the results of the same benchmarks with an older library. With it two columns are added: the older speed, and the gain.
"""

import json
import sys

YARDSTICK = "yardstick"


def rows_of(path):
    with open(path, encoding="utf-8") as file:
        return {row["name"].split("/iterations:")[0].split("/min_time:")[0]: row for row in json.load(file)["benchmarks"]}


def figures(number):
    """Three significant digits, without an exponent."""
    if number >= 100:
        return f"{number:.0f}"
    if number >= 10:
        return f"{number:.1f}"
    return f"{number:.2f}" if number >= 1 else f"{number:.3g}"


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__.strip())
    rows = rows_of(sys.argv[1])
    before = rows_of(sys.argv[2]) if len(sys.argv) == 3 else None
    unit = rows.get(YARDSTICK, {}).get("items_per_second")

    def rate(row):
        return None if row is None or row.get("error_occurred") else row["items_per_second"]

    titles = ["benchmark"] + (["before, MP/s"] if before else []) + ["MP/s"] + (["gain"] if before else [])
    titles += ["yardsticks", "goal"] if unit else []
    print("| " + " | ".join(titles) + " |")
    print("|---|" + "---:|" * (len(titles) - 1))
    failed = []
    below = []
    for name, row in rows.items():
        now = rate(row)
        if now is None:
            failed.append(f"{name}: {row['error_message']}")
            continue
        cells = [name.split("/process_time")[0].split("/real_time")[0].replace("_", " ")]
        old = rate(before.get(name)) if before else None
        if before:
            cells.append(figures(old / 1e6) if old else "")
        cells.append(figures(now / 1e6))
        if before:
            cells.append(f"{figures(now / old)} x" if old else "")
        if unit:
            multiple = now / unit
            goal = row.get("goal")
            cells += [figures(multiple), f"{goal:g}" if goal else ""]
            if goal and multiple < goal:
                below.append(f"{cells[0]}: {figures(multiple)} of {goal:g}")
        print("| " + " | ".join(cells) + " |")
    for line in below:
        print(f"below its goal: {line}", file=sys.stderr)
    for line in failed:
        print(f"failed: {line}", file=sys.stderr)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
