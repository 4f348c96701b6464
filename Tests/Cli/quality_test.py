"""Compression of a photograph: the PSNR that is printed is the true one, and rises with quality and bit rate."""

import json
import math
import os

from zortex_testing import *

PHOTO = os.path.join(DATA, "astronaut_256.png")


class Quality(ProgramTest):
    def setUp(self):
        super().setUp()
        self.original = read_png(self.photo())[4]

    def photo(self):
        with open(PHOTO, "rb") as file:
            return file.read()

    def psnr(self, name, quality):
        """Encodes, decodes, and compares the program's figure with one worked out here."""
        report = json.loads(self.succeed("convert", PHOTO, "a.zor", "--format", name, "--quality", quality, "--json"))
        self.succeed("convert", "a.zor", "back.png", "--quiet")
        width, height, colour, depth, values, _ = read_png(self.read("back.png"))
        self.assertEqual((width, height, depth), (256, 256, 8))
        if colour == RGBA:
            self.assertEqual(set(values[3::4]), {255})
            del values[3::4]
        error = sum((a - b) ** 2 for a, b in zip(self.original, values)) / len(self.original)
        figure = 10 * math.log10(255 * 255 / error)
        self.assertAlmostEqual(report["psnr"]["db"], figure, places=6)
        print(f"{name} quality {quality}: {figure:.2f} dB")
        return figure

    def test_tessel_rises_with_quality_and_bit_rate(self):
        coarse = [self.psnr("tessel1-2bpp-rgb", quality) for quality in ("0", "1")]
        fine = [self.psnr("tessel1-4bpp-rgb", quality) for quality in ("0", "1")]
        self.assertLess(coarse[0], coarse[1])
        self.assertLess(fine[0], fine[1])
        self.assertLess(coarse[0], fine[0])
        self.assertLess(coarse[1], fine[1])
        self.assertGreater(fine[1], 25.0)

    def test_tessel_with_alpha(self):
        self.psnr("tessel1-4bpp-rgba", "1")

    def test_formats_without_search(self):
        self.assertGreater(self.psnr("uyvy", "normal"), 30.0)
        self.assertGreater(self.psnr("rgbg8888", "normal"), 25.0)


if __name__ == "__main__":
    main()
