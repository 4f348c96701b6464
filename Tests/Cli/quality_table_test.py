"""The PSNR of every codec at every quality on the shipped pictures, against a stored table.

usage: quality_table_test.py           compares, and fails where a figure falls by more than the tolerance
                                       (ASTC is left out where astcenc is not built)
       quality_table_test.py --write   prints the table anew, for Tests/Data/quality.tsv
"""

import csv
import json
import os
import subprocess
import sys
import tempfile

from zortex_testing import RGBA8888, make_native, volume_of_photo

TOLERANCE = 0.02  # dB, downward; results are exact, so that this is for a deliberate change of little weight
FOREIGN_TOLERANCE = 0.3  # for the codec that comes from elsewhere, in whatever version

PICTURES = ("astronaut_256", "grass_256", "height_brick_256", "graphics_512x256", "alpha_smooth_256", "alpha_cutout_256")
CODECS = (
    ("tessel1-2bpp-rgba", ("0", "1"), ()),
    ("tessel1-4bpp-rgba", ("0", "1"), ()),
    ("tessel2-2bpp", ("0", "1"), ()),
    ("tessel2-4bpp", ("0", "1"), ()),
    ("etc1", ("0", "1"), ()),
    ("etc2-rgb", ("0", "1"), ()),
    ("etc2-rgba", ("0", "1"), ()),
    ("etc2-rgb-a1", ("0",), ()),
    ("dxt1", ("0",), ()),
    ("dxt3", ("0",), ()),
    ("dxt5", ("0",), ()),
    ("astc-4x4", ("0", "2"), ()),
    ("astc-6x6", ("0", "2", "3"), ()),
    ("astc-12x12", ("2",), ()),
    # Their search tries everything, so the pictures are small.
    ("eac-r11", ("0",), ("--resize", "64x64")),
    ("eac-rg11", ("0",), ("--resize", "64x64")),
)
# Crops of photographs, 64 x 64, for the exhaustive searches.
CROPS = ("astronaut_64", "coffee_64")
CROP_CODECS = (
    ("etc1", ("0", "1", "2", "3"), ()),
    ("etc2-rgb", ("0", "1", "2", "3"), ()),
)
VOLUME = "volume_32x32x16"
VOLUME_CODECS = (("astc-3x3x3", ("2",), ()), ("astc-6x6x6", ("0", "2"), ()))


def codecs_of(picture):
    if picture == VOLUME:
        return VOLUME_CODECS
    return CROP_CODECS if picture in CROPS else CODECS


def is_missing(name):
    return name.startswith("astc") and not os.environ["ZORT_ASTCENC"]


def measure():
    """Rows of picture, format, quality and dB."""
    with tempfile.TemporaryDirectory() as folder:
        volume = os.path.join(folder, "volume.zor")
        with open(volume, "wb") as file:
            file.write(make_native(RGBA8888, 32, 32, volume_of_photo(32, 32, 16), depth=16))
        for picture in (*PICTURES, *CROPS, VOLUME):
            path = volume if picture == VOLUME else os.path.join(os.environ["ZORT_TEST_DATA"], picture + ".png")
            for name, qualities, options in codecs_of(picture):
                for quality in qualities:
                    if is_missing(name):
                        continue
                    command = [os.environ["ZORTEX"], "convert", path, os.path.join(folder, "a.zor"), "--format", name]
                    command += ["--quality", quality, "--json", *options]
                    report = json.loads(subprocess.run(command, check=True, capture_output=True).stdout)
                    yield picture, name, quality, report["psnr"]["db"]


def main():
    if sys.argv[1:] == ["--write"]:
        print("picture\tformat\tquality\tdB")
        for picture, name, quality, figure in measure():
            print(f"{picture}\t{name}\t{quality}\t{figure:.2f}")
        return 0
    with open(os.path.join(os.environ["ZORT_TEST_DATA"], "quality.tsv"), encoding="utf-8") as file:
        stored = {(row["picture"], row["format"], row["quality"]): float(row["dB"]) for row in csv.DictReader(file, delimiter="\t")}
    fallen = []
    for picture, name, quality, figure in measure():
        expected = stored.pop((picture, name, quality), None)
        print(f"{picture} {name} {quality}: {figure:.2f} dB")
        if expected is None or figure < expected - (FOREIGN_TOLERANCE if name.startswith("astc") else TOLERANCE):
            fallen.append(f"{picture} {name} quality {quality}: {figure:.2f} dB, in the table {expected}")
    fallen += [f"not measured: {' '.join(row)}" for row in stored if not is_missing(row[1])]
    print("\n".join(fallen), file=sys.stderr)
    return 1 if fallen else 0


if __name__ == "__main__":
    sys.exit(main())
