"""The PSNR of the high-quality Tessel compressor on the shipped pictures, against a stored table.

usage: kiln_quality_test.py GROUP     compares, and fails where a figure falls by more than the tolerance
       kiln_quality_test.py --write   prints the table anew, for Tests/Data/quality_kiln.tsv

The groups: low, qualities 2 and 3; high, 4 to 6 on the middle 128 x 128 pixels of each picture. Pictures with alpha are compared
premultiplied, since the search spends nothing on colours that alpha hides.
"""

import csv
import json
import math
import os
import subprocess
import sys
import tempfile

from quality_table_test import PICTURES, TOLERANCE

FORMATS = ("tessel1-2bpp-rgba", "tessel1-4bpp-rgba", "tessel2-2bpp", "tessel2-4bpp")
MIDDLE = ("--canvas", "128x128-64-64")
GROUPS = {"low": (("2", "3"), ()), "high": (("4", "5", "6"), MIDDLE)}


def zortex(*arguments):
    return subprocess.run([os.environ["ZORTEX"], *arguments], check=True, capture_output=True).stdout


def premultiplied_psnr(folder, original, compressed):
    first, second = (os.path.join(folder, name) for name in ("first.png", "second.png"))
    for path, picture in ((original, first), (compressed, second)):
        zortex("convert", path, picture, "--premultiply", "--quiet")
    errors = json.loads(zortex("diff", first, second, "--json"))["rootMeanSquare"]
    mean = sum(errors[channel] ** 2 for channel in ("red", "green", "blue", "alpha")) / 4
    return 10 * math.log10(255 * 255 / mean)


def measure(group):
    """Rows of picture, format and quality, and their dB."""
    qualities, options = GROUPS[group]
    with tempfile.TemporaryDirectory() as folder:
        original, compressed = os.path.join(folder, "original.png"), os.path.join(folder, "compressed.zor")
        for picture in PICTURES:
            zortex("convert", os.path.join(os.environ["ZORT_TEST_DATA"], picture + ".png"), original, *options, "--quiet")
            for name in FORMATS:
                for quality in qualities:
                    report = json.loads(zortex("convert", original, compressed, "--format", name, "--quality", quality, "--json"))
                    has_alpha = picture.startswith("alpha")
                    yield (picture, name, quality), premultiplied_psnr(folder, original, compressed) if has_alpha else report["psnr"]["db"]


def main():
    if sys.argv[1:] == ["--write"]:
        print("picture\tformat\tquality\tdB")
        for group in GROUPS:
            for row, figure in measure(group):
                print(*row, f"{figure:.2f}", sep="\t", flush=True)
        return 0
    (group,) = sys.argv[1:]
    with open(os.path.join(os.environ["ZORT_TEST_DATA"], "quality_kiln.tsv"), encoding="utf-8") as file:
        stored = {(row["picture"], row["format"], row["quality"]): float(row["dB"]) for row in csv.DictReader(file, delimiter="\t")}
    fallen = []
    for row, figure in measure(group):
        print(*row, f"{figure:.2f} dB")
        if figure < stored[row] - TOLERANCE:
            fallen.append(f"{' '.join(row)}: {figure:.2f} dB, in the table {stored[row]}")
    print("\n".join(fallen), file=sys.stderr)
    return 1 if fallen else 0


if __name__ == "__main__":
    sys.exit(main())
