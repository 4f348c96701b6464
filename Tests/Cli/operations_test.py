"""The operations of convert on small pictures whose results are known, their order, and what they make of the format."""

import json
import struct

from zortex_testing import *

RGBA8888 = layout("rgba", 8, 8, 8, 8)
# What a texel holds does not matter where texels only move.
A, B, C, D, E, F = ([10 * i + 1, 10 * i + 2, 10 * i + 3, 10 * i + 4] for i in range(1, 7))
NONE = [0] * 4


class Moves(ProgramTest):
    def test_texels_move_to_their_places(self):
        self.write("a.zor", make_native(RGBA8888, 3, 2, sum((A, B, C, D, E, F), [])))
        for arguments, width, height, texels in (
            (["--flip", "x"], 3, 2, (C, B, A, F, E, D)),
            (["--flip", "Y"], 3, 2, (D, E, F, A, B, C)),
            (["--flip", "z"], 3, 2, (A, B, C, D, E, F)),
            # Clockwise: the left column becomes the top row.
            (["--rotate", "90"], 2, 3, (D, A, E, B, F, C)),
            (["--rotate", "-90"], 2, 3, (C, F, B, E, A, D)),
            (["--rotate", "270"], 2, 3, (C, F, B, E, A, D)),
            (["--rotate", "180"], 3, 2, (F, E, D, C, B, A)),
            (["--rotate", "90", "--flip", "x"], 2, 3, (A, D, B, E, C, F)),
            (["--flip", "x", "--rotate", "90"], 2, 3, (F, C, E, B, D, A)),
            (["--canvas", "2x1"], 2, 1, (A, B)),
            (["--canvas", "2x2-1-1"], 2, 2, (E, F, NONE, NONE)),
            (["--canvas", "4x2+2+1"], 4, 2, (NONE, NONE, NONE, NONE, NONE, NONE, A, B)),
            (["--border", "1x0"], 5, 2, (A, A, B, C, C, D, D, E, F, F)),
            (["--border", "0"], 3, 2, (A, B, C, D, E, F)),
            (["--border", "1", "--canvas", "3x2-1-1"], 3, 2, (A, B, C, D, E, F)),
        ):
            with self.subTest(arguments):
                self.succeed("convert", *arguments, "a.zor", "b.zor")
                header, pixels = read_native(self.read("b.zor"))
                self.assertEqual((header["width"], header["height"], list(pixels)), (width, height, sum(texels, [])))

    def test_volumes(self):
        self.write("a.zor", make_native(RGBA8888, 1, 1, A + B, depth=2))
        self.succeed("convert", "a.zor", "b.zor", "--flip", "z", "--canvas", "1x1x3+0+0+1")
        header, pixels = read_native(self.read("b.zor"))
        self.assertEqual((header["depth"], list(pixels)), (3, NONE + B + A))

    def test_levels_that_are_dropped_are_mentioned(self):
        self.write("a.zor", make_native(RGBA8888, 2, 2, bytes(20), levels=2))
        for option, value in (("--canvas", "1x1"), ("--border", "1"), ("--resize", "1x1")):
            self.assertIn(option + " keeps the top level only", self.succeed("convert", "a.zor", "b.zor", option, value))

    def test_results_beyond_a_textures_size(self):
        self.write("a.zor", make_native(RGBA8888, 1, 1, A))
        self.refuse(1, "a.zor: cannot get a canvas of 65536x65536: .*4 GiB", "convert", "a.zor", "b.zor", "--canvas", "65536x65536")
        self.refuse(1, "a.zor: cannot get a border of 65536x65536: .*4 GiB", "convert", "a.zor", "b.zor", "--border", "65536")


class Channels(ProgramTest):
    def convert(self, *arguments):
        self.succeed("convert", "a.png", "b.png", *arguments)
        return read_png(self.read("b.png"))[2:5]

    def test_values_and_copies(self):
        self.write("a.png", make_png(1, 1, RGB, 8, [200, 100, 0]))
        self.write("mask.png", make_png(1, 1, GREY, 16, [0x8080]))
        for arguments, colour, values in (
            (["--set-channel", "g=0.5"], RGB, [200, 128, 0]),
            (["--set-channel", "RB=1"], RGB, [255, 100, 255]),
            (["--set-channel", "a=0.25"], RGBA, [200, 100, 0, 64]),
            (["--set-channel", "g=-3", "--set-channel", "b=7"], RGB, [200, 0, 255]),
            (["--copy-channel", "rgb=bgr"], RGB, [0, 100, 200]),
            (["--copy-channel", "rg=i"], RGB, [100, 100, 0]),
            # 16 bits of a file become 8 of the texture.
            (["--copy-channel", "a=r:mask.png"], RGBA, [200, 100, 0, 128]),
            (["--set-channel", "r=0", "--copy-channel", "g=r"], RGB, [0, 0, 0]),
            (["--copy-channel", "g=r", "--set-channel", "r=0"], RGB, [0, 200, 0]),
        ):
            with self.subTest(arguments):
                self.assertEqual(self.convert(*arguments), (colour, 8, values))

    def test_grey_pictures_keep_what_was_done(self):
        self.write("a.png", make_png(1, 1, GREY, 8, [9]))
        self.assertEqual(self.convert("--set-channel", "a=1"), (GREY_ALPHA, 8, [9, 255]))
        self.assertEqual(self.convert("--set-channel", "r=1"), (RGB, 8, [255, 9, 9]))

    def test_floats_are_not_clamped(self):
        self.write("a.zor", make_native(layout("rgba", 32, 32, 32, 32), 1, 1, bytes(16), channel_type=FLOAT))
        self.succeed("convert", "a.zor", "b.zor", "--set-channel", "g=-3.5")
        self.assertEqual(struct.unpack("<4f", read_native(self.read("b.zor"))[1]), (0.0, -3.5, 0.0, 0.0))

    def test_sources_that_do_not_fit(self):
        self.write("a.png", make_png(1, 1, RGB, 8, [0] * 3))
        self.write("wide.png", make_png(2, 1, RGB, 8, [0] * 6))
        for name, pattern in (("wide.png", "wide.png: its channels cannot be copied: it is 2x1x1"), ("no.png", "no.png: cannot be opened")):
            self.refuse(1, pattern, "convert", "a.png", "b.png", "--copy-channel", "a=r:" + name)


class Levels(ProgramTest):
    def test_a_chain(self):
        self.write("a.png", make_png(4, 4, GREY, 8, [0, 40, 100, 200, 80, 120, 100, 200] * 2))
        for arguments, levels, pixels in (
            # The means of four; a side of 1 is sampled at its start.
            (["--mips"], 3, [60, 150, 60, 150, 60]),
            (["--mips", "2"], 2, [60, 150, 60, 150]),
            (["--mips", "4"], 4, [60, 150, 60, 150, 60, 60]),
            (["--mips", "1"], 1, []),
            (["--flip", "x", "--mips"], 3, [150, 60, 150, 60, 150]),
        ):
            with self.subTest(arguments):
                for command in (["convert", "a.png", "b.zor", *arguments], ["convert", *arguments, "a.png", "b.zor"]):
                    self.succeed(*command)
                    header, content = read_native(self.read("b.zor"))
                    self.assertEqual((header["levels"], list(content[16:])), (levels, pixels))

    def test_filters(self):
        self.write("a.png", make_png(8, 8, GREY, 8, [i * 37 % 256 for i in range(64)]))
        results = set()
        for name in ("nearest", "linear", "cubic"):
            self.succeed("convert", "a.png", "b.zor", "--mips", "--mip-filter", name)
            results.add(self.read("b.zor"))
        self.assertEqual(len(results), 3)

    def test_levels_survive_compression(self):
        """Each level of whole blocks in a compressed chain is that level of the chain, compressed."""
        self.write("a.png", make_png(32, 32, RGBA, 8, [(i * i // 7) & 255 for i in range(32 * 32 * 4)]))
        self.succeed("convert", "a.png", "plain.zor", "--mips")
        for name in ("etc2-rgba", "etc2-rgb", "tessel1-4bpp-rgb", "rgbg8888"):
            with self.subTest(name):
                quality = ["--format", name, "--quality", "0"]
                self.succeed("convert", "a.png", "chain.zor", "--mips", *quality)
                self.assertEqual(read_native(self.read("chain.zor"))[0]["levels"], 6)
                for level in ("0", "1", "3"):
                    self.succeed("convert", "chain.zor", "one.png", "--mip", level)
                    self.succeed("convert", "plain.zor", "level.zor", "--mip", level)
                    self.succeed("convert", "level.zor", "level.zor", *quality)
                    self.succeed("convert", "level.zor", "two.png")
                    self.assertEqual(self.read("one.png"), self.read("two.png"), level)
        self.succeed("convert", "a.png", "chain.ktx", "--mips", "--format", "etc2-rgba", "--quality", "0")
        self.assertEqual(json.loads(self.succeed("info", "chain.ktx", "--json"))["mipLevels"], 6)

    def test_tints(self):
        self.write("a.png", make_png(2, 2, GREY, 8, [90] * 4))
        self.succeed("convert", "a.png", "b.zor", "--mips", "--colour-mips")
        header, pixels = read_native(self.read("b.zor"))
        self.assertEqual((header["format"], list(pixels)), (layout("rgb", 8, 8, 8), [90] * 12 + [0, 90, 0]))
        self.assertIn("--colour-mips changes nothing", self.succeed("convert", "a.png", "b.zor", "--colour-mips"))


class NormalMaps(ProgramTest):
    def normal(self, dx, dy):
        length = (dx * dx + dy * dy + 1) ** 0.5
        return [(value / length * 0.5 + 0.5) for value in (dx, dy, 1)]

    def test_values(self):
        # A peak in the middle of a row; rows wrap, and so do columns.
        self.write("a.png", make_png(4, 1, GREY, 8, [0, 0, 255, 0]))
        for option, heights in (("2", (0, -2, 0, 2)), ("-2:XYZ", (0, 2, 0, -2))):
            report = json.loads(self.succeed("convert", "a.png", "b.zor", "--normal-map", option, "--json"))
            self.assertEqual((report["output"]["format"], report["output"]["colourSpace"]), ("rgb888", "linear"))
            expected = [value * 255 for dx in heights for value in self.normal(dx, 0)]
            for actual, value in zip(read_native(self.read("b.zor"))[1][-12:], expected):
                self.assertAlmostEqual(actual, value, delta=0.51)
            bump = json.loads(self.succeed("info", "b.zor", "--json"))["bumpMap"]
            self.assertEqual(bump, {"scale": float(option.split(":")[0]), "order": "xyz"})

    def test_orders_and_depths(self):
        self.write("a.png", make_png(2, 1, GREY, 16, [0x4000, 0x8000]))
        self.succeed("convert", "a.png", "b.png", "--normal-map", "1:zh1y")
        width, height, colour, depth, values, chunks = read_png(self.read("b.png"))
        # Both neighbours of either texel are the other one, so that the slope is nothing.
        self.assertEqual((colour, depth), (RGBA, 16))
        self.assertEqual(values, [65535, 0x4000, 65535, 32768, 65535, 0x8000, 65535, 32768])

    def test_float_heights(self):
        self.write("a.zor", make_native(layout("r", 32), 4, 1, struct.pack("<4f", 0, 0, 1, 0), channel_type=FLOAT))
        self.assertIn("16 bits", self.succeed("convert", "a.zor", "b.png", "--normal-map", "1"))
        values = read_png(self.read("b.png"))[4]
        self.assertLess(values[3], 0.2 * 65535)


class WrongValues(ProgramTest):
    def test_values(self):
        self.write("a.png", make_png(1, 1, GREY, 8, [0]))
        for option, values in {
            "--mips": ("0", "257", "99999999999", "-1", "2x"),
            "--mip-filter": ("soft",),
            "--normal-map": ("0", "", "x", "2:", "2:xyzhx", "2:xq", "nan", "inf", "2xyz"),
            "--flip": ("w", "", "xy"),
            "--rotate": ("45", "x", "360"),
            "--canvas": ("4", "4x", "0x4", "4x4+1", "4x4+1+", "4x4+1+1+1+1", "4x4 ", "4x4x0", "65537x1"),
            "--border": ("", "x", "-1", "1x", "1x1x1x1", "65537"),
            "--set-channel": ("", "a", "a=", "=1", "q=1", "a=x", "a=nan", "rgbaa=1"),
            "--copy-channel": ("", "a", "a=", "a=rg", "rgb=rg", "l=r", "a=q", "a=r:"),
        }.items():
            for value in values:
                with self.subTest(option=option, value=value):
                    self.refuse(2, f"{option}: '", "convert", "a.png", "b.png", f"{option}={value}" if value else option,
                                *([] if value else [""]))


if __name__ == "__main__":
    main()
