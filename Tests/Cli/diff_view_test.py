"""diff: figures worked out by hand, the pictures, the limit. view: where every image of a texture is drawn."""

import json
import math
import os
import struct

from zortex_testing import *

RGBA8888 = layout("rgba", 8, 8, 8, 8)
PHOTO = os.path.join(DATA, "astronaut_256.png")


class Diff(ProgramTest):
    def setUp(self):
        super().setUp()
        # Red differs by 3 and 1, green by -4 and 0.
        self.write("a.png", make_png(2, 1, RGB, 8, [13, 0, 7, 11, 5, 7]))
        self.write("b.png", make_png(2, 1, RGB, 8, [10, 4, 7, 10, 5, 7]))

    def measure(self, *arguments):
        return json.loads(self.succeed("diff", *arguments, "--json"))

    def test_figures(self):
        figures = self.measure("a.png", "b.png")
        self.assertEqual((figures["peak"], figures["channels"], figures["identical"]), (255, "rgb", False))
        root = [math.sqrt(5), math.sqrt(8), 0, 0]
        library = [20 * math.log10(255 / math.sqrt(value)) if value else -1 for value in root + [math.sqrt(sum(root))]]
        decibels = [10 * math.log10(255 * 255 / square) if square else None for square in (5, 8, 0, 0, 13 / 3)]
        for name, expected in (
            ("largest", [3, 4, 0, 0, 4]),
            ("mean", [2, 2, 0, 0, 1]),
            ("rootMeanSquare", root + [math.sqrt(sum(root))]),
            ("standardDeviation", [1, math.sqrt(20), 0, 0, (1 + math.sqrt(20)) / 4]),
            ("libraryPsnr", library),
            ("psnr", decibels),
        ):
            for channel, value in zip(("red", "green", "blue", "alpha", "all"), expected):
                with self.subTest(name, channel=channel):
                    actual = figures[name][channel]
                    self.assertEqual(actual is None, value is None)
                    self.assertAlmostEqual(actual or 0, value or 0, delta=1e-4)

    def test_the_table(self):
        text = self.succeed("diff", "a.png", "b.png")
        self.assertRegex(text, r"largest difference +3\.000 +4\.000 +0\.000 +0\.000 +4\.000\n")
        self.assertRegex(text, r"\nlibrary PSNR .*-1\.00")
        self.assertRegex(text, r"\nPSNR in dB +41\.14 +39\.10 +equal +equal +41\.76\n")
        self.assertTrue(self.measure("a.png", "a.png")["identical"])

    def test_precisions_and_spaces_are_brought_together(self):
        self.write("deep.png", make_png(1, 1, GREY, 16, [100 * 257 + 1]))
        self.write("flat.png", make_png(1, 1, GREY, 8, [100]))
        figures = self.measure("flat.png", "deep.png")
        self.assertEqual((figures["peak"], figures["largest"]["red"]), (65535, 1))
        self.succeed("convert", "flat.png", "linear.zor", "--space", "linear", "--format", "rgba32f")
        figures = self.measure("flat.png", "linear.zor")
        self.assertEqual(figures["peak"], 1)
        self.assertLess(figures["largest"]["all"], 1e-5)
        self.assertIn("colour spaces differ", figures["notes"][0])

    def test_any_format(self):
        for name in ("tessel1-4bpp-rgb", "etc2-rgba", "rgba16f", "uyvy"):
            report = json.loads(self.succeed("convert", PHOTO, "c.zor", "--format", name, "--quality", "0", "--json"))
            figures = self.measure(PHOTO, "c.zor")
            self.assertAlmostEqual(figures["psnr"]["green"], report["psnr"]["dbByChannel"]["g"], places=1, msg=name)

    def test_one_image_of_many(self):
        cells = [bytes([value] * 4) for value in range(10, 10 + 2 * 6 * 2)]
        self.write("a.zor", make_native(RGBA8888, 1, 1, b"".join(cells), surfaces=2, faces=6, levels=2))
        cells[12 + 6 + 3] = bytes([1] * 4)
        self.write("b.zor", make_native(RGBA8888, 1, 1, b"".join(cells), surfaces=2, faces=6, levels=2))
        self.assertIn("of which one is compared", self.succeed("diff", "a.zor", "b.zor"))
        for level, surface, face, largest in (("1", "1", "3", 30), ("0", "1", "3", 0), ("1", "0", "3", 0), ("1", "1", "2", 0)):
            figures = self.measure("a.zor", "b.zor", "--mip", level, "--surface", surface, "--face", face)
            self.assertEqual((figures["largest"]["all"], figures["notes"]), (largest, []))
        self.refuse(1, "a.zor: has no face 6", "diff", "a.zor", "b.zor", "--face", "6")

    def test_pictures(self):
        self.write("c.png", make_png(2, 1, RGB, 8, [10, 4, 7, 13, 5, 7]))
        for name, arguments, colour, values in (
            # Differences of 4 and 2 of 255.
            ("c.png", ["--mode", "tolerance", "--tolerance", "0.012"], RGB, [255, 0, 0] + [0, 0, 255]),
            ("c.png", ["--mode", "tolerance", "--tolerance", "0"], RGB, [255, 0, 0] * 2),
            ("a.png", ["--mode", "tolerance", "--tolerance", "1"], RGB, [0] * 6),
            ("b.png", ["--mode", "blend", "--ratio", "0"], RGB, [10, 4, 7, 10, 5, 7]),
            ("b.png", ["--mode", "blend", "--ratio", "1"], RGB, [13, 0, 7, 11, 5, 7]),
            # Half intensity where nothing differs, and the difference times 10 on top.
            ("b.png", ["--mode", "colour", "--multiplier", "10"], RGB, [158, 168, 128, 138, 128, 128]),
        ):
            with self.subTest(arguments):
                self.succeed("diff", "a.png", name, "--image", "d.png", *arguments)
                picture = read_png(self.read("d.png"))
                self.assertEqual(picture[2], colour)
                for actual, value in zip(picture[4], values):
                    self.assertAlmostEqual(actual, value, delta=1)
        self.succeed("diff", "a.png", "b.png", "--image", "d.zor")
        self.assertEqual(struct.unpack("<8f", read_native(self.read("d.zor"))[1])[2:4], (0.5, 1.5))

    def test_the_limit(self):
        for limit, code in (("4", 0), ("3.99", 1), ("0", 1)):
            result = self.run_program("diff", "a.png", "b.png", "--fail-above", limit)
            self.assertEqual(result.returncode, code)
            self.assertIn("largest difference", result.stdout)
            self.assertEqual(result.stderr != "", code == 1)
        self.assertRegex(result.stderr, r"\Azortex: b.png: differs from a.png by up to 4, the limit is 0\n\Z")
        self.succeed("diff", "a.png", "a.png", "--fail-above", "0")
        # A value that is no number is never within the limit.
        for name, value in (("x.zor", 0.0), ("y.zor", math.nan)):
            self.write(name, make_native(layout("r", 32), 1, 1, struct.pack("<f", value), channel_type=FLOAT))
        self.assertEqual(self.run_program("diff", "x.zor", "y.zor", "--fail-above", "9").returncode, 1)
        self.succeed("diff", "y.zor", "y.zor", "--fail-above", "0")

    def test_refusals(self):
        self.write("wide.png", make_png(3, 1, RGB, 8, [0] * 9))
        self.write("deep.zor", make_native(22, 4, 4, bytes(16), depth=2))
        self.refuse(1, "wide.png: is 3x1, and a.png is 2x1", "diff", "a.png", "wide.png", "--image", "d.png")
        self.refuse(1, "no.png: cannot be opened", "diff", "a.png", "no.png")
        self.refuse(1, "deep.zor: holds a volume in etc2-rgb, which cannot be decoded", "diff", "deep.zor", "a.png")
        for arguments in (["--mode", "odd"], ["--image", "d.jpg"], ["--fail-above", "-1"], ["--ratio", "nan"], ["--mip", "x"]):
            self.refuse(2, ".*" + arguments[0], "diff", "a.png", "b.png", *arguments)


class View(ProgramTest):
    def view(self, name):
        self.succeed("view", name, "sheet.png")
        width, height, colour, depth, values, _ = read_png(self.read("sheet.png"))
        self.assertEqual((colour, depth), (RGB, 8))
        return width, height, lambda x, y: tuple(values[(y * width + x) * 3:(y * width + x) * 3 + 3])

    def test_levels_stand_beside_the_top(self):
        pixels = [0] * 4 * 64 + [50] * 4 * 16 + [100] * 4 * 4 + [150] * 4
        pixels[3::4] = [255] * 85
        self.write("a.zor", make_native(RGBA8888, 8, 8, pixels, space=1, levels=4))
        width, height, at = self.view("a.zor")
        # Gaps of 4 around 8, 4 / 2 / 1.
        self.assertEqual((width, height), (4 + 12 + 8, 4 + 8 + 6 + 5))
        for position, value in {(4, 4): 0, (11, 11): 0, (12, 4): 64, (16, 4): 50, (19, 7): 50, (16, 12): 100, (16, 18): 150,
                                (17, 18): 64, (0, 0): 64, (23, 22): 64}.items():
            self.assertEqual(at(*position), (value,) * 3, position)

    def test_faces_surfaces_and_slices(self):
        def texture(count, **shape):
            self.write("a.zor", make_native(RGBA8888, 1, 1, sum(([i * 10, 0, 0, 255] for i in range(count)), []), space=1, **shape))

        for shape, count, columns, rows in (({"surfaces": 2, "faces": 6}, 12, 6, 2), ({"surfaces": 5}, 5, 3, 2), ({"depth": 7}, 7, 3, 3)):
            texture(count, **shape)
            width, height, at = self.view("a.zor")
            self.assertEqual((width, height), (4 + 5 * columns, 4 + 5 * rows))
            for i in range(columns * rows):
                expected = (i * 10, 0, 0) if i < count else (64, 64, 64)
                self.assertEqual(at(4 + 5 * (i % columns), 4 + 5 * (i // columns)), expected, (shape, i))

    def test_transparency(self):
        # Transparent, half, opaque; over the first, light square of the second row of the checkerboard, and a dark one.
        row = [200, 0, 0, 0] * 8 + [200, 0, 0, 128] * 8
        for flags, red in ((0, 127 * 204 // 255 + 200 * 128 // 255), (2, 255)):
            self.write("a.zor", make_native(RGBA8888, 16, 1, row, space=1, flags=flags))
            at = self.view("a.zor")[2]
            self.assertEqual(at(4, 4), (153, 153, 153) if flags == 0 else (255, 153, 153))
            self.assertAlmostEqual(at(12, 4)[0], red, delta=2)
            self.assertAlmostEqual(at(12, 4)[1], 127 * 204 // 255, delta=1)

    def test_colour_spaces(self):
        # Linear light is shown as sRGB, directions as they are.
        self.write("a.zor", make_native(RGBA8888, 1, 1, [55, 55, 55, 255]))
        self.assertAlmostEqual(self.view("a.zor")[2](4, 4)[0], 128, delta=1)
        self.write("b.png", make_png(1, 1, GREY, 8, [9]))
        self.succeed("convert", "b.png", "n.zor", "--normal-map", "1")
        self.assertEqual(self.view("n.zor")[2](4, 4), (128, 128, 255))

    def test_compressed_chains(self):
        self.succeed("convert", PHOTO, "c.zor", "--mips", "--format", "etc2-rgb", "--quality", "0")
        width, height, at = self.view("c.zor")
        self.assertEqual(width, 4 + 256 + 4 + 128 + 4)
        self.succeed("convert", "c.zor", "one.png", "--mip", "1")
        values = read_png(self.read("one.png"))[4]
        for x, y in ((0, 0), (127, 0), (64, 100)):
            self.assertEqual(at(264 + x, 4 + y), tuple(values[(y * 128 + x) * 3:(y * 128 + x) * 3 + 3]))

    def test_refusals(self):
        self.write("a.png", make_png(1, 1, GREY, 8, [9]))
        self.write("deep.zor", make_native(22, 4, 4, bytes(16), depth=2))
        self.write("long.zor", make_native(layout("r", 8), 70000, 1, bytes(70000)))
        self.refuse(2, "b.zor: the output's extension must be .png", "view", "a.png", "b.zor")
        self.refuse(1, "deep.zor: holds a volume", "view", "deep.zor", "b.png")
        self.refuse(1, "long.zor: is too large for one picture: it would be 70008x9", "view", "long.zor", "b.png")
        self.refuse(1, "no/b.png: cannot be written", "view", "a.png", "no/b.png")


if __name__ == "__main__":
    main()
