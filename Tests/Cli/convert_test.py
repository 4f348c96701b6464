"""Conversions: bytes of uncompressed formats worked out by hand, operations and their order, colour spaces, the report."""

import json
import struct

from zortex_testing import *

RGBA8888 = layout("rgba", 8, 8, 8, 8)


class Formats(ProgramTest):
    def test_bytes_of_layouts(self):
        # One pixel: red full, green half (128), blue 0, alpha 64.
        self.write("a.png", make_png(1, 1, RGBA, 8, [255, 128, 0, 64]))
        half = lambda value: struct.pack("<e", value)
        for name, type_name, expected in (
            ("rgba8888", None, bytes([255, 128, 0, 64])),
            ("BGRA8", None, bytes([0, 128, 255, 64])),
            ("rgb888", None, bytes([255, 128, 0])),
            ("a8", None, bytes([64])),
            ("rg88", "uint8", bytes([255, 128])),
            # 128 / 255 of 63 is 31.6, rounded to 32.
            ("rgb565", None, struct.pack("<H", 31 << 11 | 32 << 5)),
            ("rgb332", None, bytes([7 << 5 | 4 << 2])),
            # A quarter of 15 rounds to 4, of 1 to 0.
            ("rgba4444", None, struct.pack("<H", 15 << 12 | 8 << 8 | 0 << 4 | 4)),
            ("argb1555", None, struct.pack("<H", 0 << 15 | 31 << 10 | 16 << 5)),
            ("abgr2.10.10.10", None, struct.pack("<I", 1 << 30 | 0 << 20 | 514 << 10 | 1023)),
            ("rgba16", None, struct.pack("<4H", 65535, 32896, 0, 16448)),
            ("rg1616", None, struct.pack("<2H", 65535, 32896)),
            ("r16f", None, half(1.0)),
            ("r16", "float", half(1.0)),
            ("rgba32f", None, struct.pack("<4f", 1.0, 128 / 255, 0.0, 64 / 255)),
            # Exponent 15 without a mantissa in each; 128 / 255 is 1.0039 / 2, cut to exponent 14.
            ("bgr10.11.11", None, struct.pack("<I", 0 << 22 | 14 << 6 << 11 | 15 << 6)),
            # Sign and magnitude: 1.0 is 127, a half 64.
            ("rgb8", "snorm", bytes([127, 64, 0])),
            # The mean of the three, and their weighted sum: 0.2126 + 0.7152 * 128 / 255 is 0.5716.
            ("i8", None, bytes([128])),
            ("la88", None, bytes([146, 64])),
        ):
            with self.subTest(name, type=type_name):
                self.succeed("convert", "a.png", "b.zor", "--format", name, *(["--type", type_name] if type_name else []))
                self.assertEqual(read_native(self.read("b.zor"))[1], expected)

    def test_colour_spaces(self):
        self.write("a.png", make_png(3, 1, GREY_ALPHA, 8, [0, 99, 128, 99, 255, 99]))
        self.succeed("convert", "a.png", "b.zor", "--space", "linear")
        header, pixels = read_native(self.read("b.zor"))
        # 128 / 255 in sRGB is 0.2158 in linear light; alpha stays.
        self.assertEqual((header["space"], pixels), (0, bytes([0, 99, 55, 99, 255, 99])))
        self.succeed("convert", "a.png", "c.zor", "--input-space", "linear")
        header, pixels = read_native(self.read("c.zor"))
        self.assertEqual((header["space"], pixels[2]), (0, 128))
        self.succeed("convert", "c.zor", "d.png", "--space", "srgb")
        self.assertEqual(read_png(self.read("d.png"))[4][2], 188)

    def test_dxt_levels_of_all_sizes(self):
        # Red at the left and blue at the right of every level down to 2x2; all surfaces and faces of one texture.
        halves = ((255, 0, 0, 255), (0, 0, 255, 102))
        columns = [halves[x * 2 // width] for width in (8, 4, 2) for _ in range(12 * width) for x in range(width)]
        whole = make_native(RGBA8888, 8, 8, [value for pixel in columns for value in pixel], levels=3, surfaces=2, faces=6)
        self.write("a.zor", whole)
        for name in ("dxt1", "dxt2", "dxt3", "dxt4", "dxt5"):
            with self.subTest(name):
                said = self.succeed("convert", "a.zor", "b.zor", "--format", name)
                self.assertEqual("premultiplied" in said, name in ("dxt2", "dxt4"))
                self.assertEqual(len(read_native(self.read("b.zor"))[1]), 12 * (4 + 1 + 1) * (8 if name == "dxt1" else 16))
                self.succeed("convert", "b.zor", "c.zor", "--format", "rgba8888")
                header, pixels = read_native(self.read("c.zor"))
                expected = [0, 0, 0, 0] if name == "dxt1" else [0, 0, 255, 102]
                self.assertEqual((header["levels"], header["surfaces"], header["faces"]), (3, 2, 6))
                self.assertEqual(list(pixels), [v for pixel in columns for v in (pixel if pixel[0] else expected)])

    def test_dxt_is_dithered(self):
        self.write("a.png", make_png(16, 16, GREY, 8, [103] * 256))
        self.succeed("convert", "a.png", "plain.zor", "--format", "dxt1")
        self.succeed("convert", "a.png", "dithered.zor", "--format", "dxt1", "--dither")
        blocks = lambda name: {block for block, in struct.iter_unpack("<Q", read_native(self.read(name))[1])}
        self.assertEqual(len(blocks("plain.zor")), 1)
        self.assertGreater(len(blocks("dithered.zor")), 1)

    def test_dithering_spreads_the_error(self):
        self.write("a.png", make_png(16, 16, GREY, 8, [103] * 256))
        self.succeed("convert", "a.png", "plain.zor", "--format", "rgb565")
        self.succeed("convert", "a.png", "dithered.zor", "--format", "rgb565", "--dither")
        words = lambda name: struct.unpack("<256H", read_native(self.read(name))[1])
        self.assertEqual(len(set(words("plain.zor"))), 1)
        self.assertGreater(len(set(words("dithered.zor"))), 1)
        self.assertIn("--dither changes nothing", self.succeed("convert", "a.png", "c.zor", "--dither"))

    def test_an_unchanged_texture_is_copied(self):
        for pixel_format, size in ((7, 8), (RGBA8888, 64), (layout("rr", 8, 8), 32)):
            whole = make_native(pixel_format, 4, 4, range(size), flags=2, blocks=[(7, 1, b"abc")])
            self.write("a.zor", whole)
            self.succeed("convert", "a.zor", "b.zor")
            self.assertEqual(self.read("b.zor"), whole)

    def test_floats_in_a_png_are_clamped_and_it_is_said(self):
        self.write("a.zor", make_native(layout("r", 32), 3, 1, struct.pack("<3f", -1.0, 0.5, 7.0), channel_type=FLOAT))
        self.assertIn("clamped", self.succeed("convert", "a.zor", "b.png"))
        self.assertEqual(read_png(self.read("b.png"))[3:5], (16, [0, 0, 0, 32768, 0, 0, 65535, 0, 0]))
        self.succeed("convert", "a.zor", "c.png", "--format", "l8")
        self.assertEqual(read_png(self.read("c.png"))[2:4], (GREY, 8))


class Operations(ProgramTest):
    def setUp(self):
        super().setUp()
        # Opaque red beside transparent green.
        self.write("a.png", make_png(2, 1, RGBA, 8, [200, 0, 0, 255, 0, 100, 0, 0]))

    def pixels(self, *arguments):
        self.succeed("convert", "a.png", "b.zor", *arguments)
        header, pixels = read_native(self.read("b.zor"))
        self.assertEqual(header["format"], RGBA8888)
        return header, list(pixels)

    def test_premultiply_and_bleed(self):
        header, pixels = self.pixels("--premultiply")
        self.assertEqual((header["flags"], pixels), (2, [200, 0, 0, 255, 0, 0, 0, 0]))
        header, pixels = self.pixels("--bleed")
        self.assertEqual((header["flags"], pixels), (0, [200, 0, 0, 255, 200, 0, 0, 0]))
        self.refuse(1, "a.png: is premultiplied already", "convert", "a.png", "c.zor", "--premultiply", "--premultiply")

    def test_resize(self):
        header, pixels = self.pixels("--resize", "4x2", "--filter", "nearest")
        row = [200, 0, 0, 255] * 2 + [0, 100, 0, 0] * 2
        self.assertEqual((header["width"], header["height"], pixels), (4, 2, row * 2))

    def test_the_order_is_the_command_lines(self):
        one = ["--resize", "1x1", "--filter", "cubic"]
        orders = {
            name: self.pixels(*arguments)[1]
            for name, arguments in {
                "bleed, resize": ["--bleed", *one],
                "resize, bleed": [*one, "--bleed"],
                "resize twice": [*one, "--resize", "2x1", "--bleed"],
                "equal": ["--bleed", "--resize", "2x1", "--premultiply"],
            }.items()
        }
        # Bleeding first leaves red alone; resizing first has mixed the green in.
        self.assertEqual(orders["bleed, resize"][1], 0)
        self.assertGreater(orders["resize, bleed"][1], 0)
        self.assertEqual(orders["resize twice"][:4], orders["resize, bleed"])
        self.assertEqual(orders["equal"], [200, 0, 0, 255, 0, 0, 0, 0])

    def test_deep_textures(self):
        values = [0x1234, 0x8000, 0xFFFF, 0x8080]
        self.write("deep.png", make_png(1, 1, RGBA, 16, values))
        self.assertIn("8 bits a channel", self.succeed("convert", "deep.png", "b.zor", "--premultiply"))
        header, pixels = read_native(self.read("b.zor"))
        self.assertEqual((header["format"], header["flags"]), (layout("rgba", 16, 16, 16, 16), 2))
        # 0x80 of 255 times 128, cut to 64; in 16 bits 64 * 257.
        self.assertEqual(struct.unpack("<4H", pixels)[1], 64 * 257)
        # Without these operations 16 bits stay 16 bits.
        self.succeed("convert", "deep.png", "c.zor", "--resize", "2x2", "--filter", "nearest")
        self.assertEqual(struct.unpack("<16H", read_native(self.read("c.zor"))[1]), tuple(values * 4))

    def test_volumes(self):
        self.write("v.zor", make_native(RGBA8888, 1, 1, bytes([0] * 4 + [100] * 4), depth=2))
        self.succeed("convert", "v.zor", "b.zor", "--resize", "2x1x4", "--filter", "nearest")
        header, pixels = read_native(self.read("b.zor"))
        self.assertEqual((header["width"], header["height"], header["depth"]), (2, 1, 4))
        self.assertEqual(pixels, bytes([0] * 16 + [100] * 16))

    def test_too_large(self):
        self.refuse(1, "a.png: cannot be resized to 65536x65536: .*4 GiB", "convert", "a.png", "c.zor", "--resize", "65536x65536")


class Report(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.png", make_png(4, 4, RGB, 8, [i * 5 for i in range(48)]))

    def test_json(self):
        report = json.loads(self.succeed("convert", "a.png", "b.zor", "--format", "rgb565", "--json"))
        self.assertEqual((report["input"]["file"], report["input"]["format"]), ("a.png", "rgb888"))
        self.assertEqual((report["output"]["format"], report["output"]["fileBytes"]), ("rgb565", 52 + 32))
        self.assertEqual((report["bytesBefore"], report["bytesAfter"], report["ratio"]), (48, 32, 1.5))
        self.assertGreaterEqual(report["seconds"], 0.0)
        # The errors of 5, 6 and 5 bits, by the customary formula.
        back = []
        for (word,) in struct.iter_unpack("<H", read_native(self.read("b.zor"))[1]):
            back += [(word >> 11) / 31 * 255, (word >> 5 & 63) / 63 * 255, (word & 31) / 31 * 255]
        error = sum((i * 5 - value) ** 2 for i, value in enumerate(back)) / 48
        self.assertAlmostEqual(report["psnr"]["meanSquaredError"], error, places=3)
        self.assertEqual(report["psnr"]["channels"], "rgb")

    def test_identical(self):
        report = json.loads(self.succeed("convert", "a.png", "b.zor", "--format", "rgba8888", "--json"))
        self.assertEqual((report["psnr"]["identical"], report["psnr"]["db"]), (True, None))
        self.assertIn("identical", self.succeed("convert", "a.png", "b.zor", "--format", "bgr888"))

    def test_text_and_quiet(self):
        self.assertRegex(self.succeed("convert", "a.png", "b.zor", "--format", "rgb565"),
                         r"\Ab.zor: rgb565, 4x4, .*\n  size 84 bytes \(pixels 48 -> 32, ratio 1.50:1\), [0-9.]+ s, PSNR [0-9.]+ dB \(RGB\)\n\Z")
        self.assertEqual(self.succeed("convert", "a.png", "b.zor", "--format", "rgb565", "--quiet"), "")


if __name__ == "__main__":
    main()
