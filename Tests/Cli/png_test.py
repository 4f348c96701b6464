"""PNG files of every kind into textures and back, and files that are no PNG pictures."""

import random
import struct
import zlib

from zortex_testing import *

WIDTH, HEIGHT = 7, 5
PIXELS = WIDTH * HEIGHT


def random_values(count, depth, seed=1):
    return [random.Random(seed * 1000 + i).randrange(1 << depth) for i in range(count)]


def widened(values, depth):
    """Fewer than 8 bits on the scale of 8."""
    return [value * 255 // ((1 << depth) - 1) for value in values] if depth < 8 else values


class PngKinds(ProgramTest):
    def check(self, content, letters, depth, expected, space=1):
        """The picture becomes a texture of the expected bytes, and that becomes a PNG file of the same pixels."""
        self.write("in.png", content)
        self.succeed("convert", "in.png", "out.zor", "--quiet")
        header, pixels = read_native(self.read("out.zor"))
        self.assertEqual(header["format"], layout(letters, *[depth] * len(letters)))
        self.assertEqual((header["width"], header["height"], header["space"]), (WIDTH, HEIGHT, space))
        self.assertEqual(header["type"], UNORM8 if depth == 8 else UNORM16)
        self.assertEqual(pixels, bytes(expected) if depth == 8 else struct.pack(f"<{len(expected)}H", *expected))

        self.succeed("convert", "out.zor", "back.png", "--quiet")
        colour = {"l": GREY, "la": GREY_ALPHA, "rgb": RGB, "rgba": RGBA}[letters]
        width, height, back_colour, back_depth, values, chunks = read_png(self.read("back.png"))
        self.assertEqual((width, height, back_colour, back_depth), (WIDTH, HEIGHT, colour, depth))
        self.assertEqual(values, expected)
        self.assertIn(b"sRGB" if space == 1 else b"gAMA", chunks)

    def test_grey_and_colour(self):
        for colour, letters in ((GREY, "l"), (GREY_ALPHA, "la"), (RGB, "rgb"), (RGBA, "rgba")):
            for depth in (1, 2, 4, 8, 16) if colour == GREY else (8, 16):
                for interlace in (False, True):
                    with self.subTest(colour=colour, depth=depth, interlace=interlace):
                        values = random_values(PIXELS * len(letters), depth)
                        content = make_png(WIDTH, HEIGHT, colour, depth, values, interlace=interlace)
                        self.check(content, letters, max(8, depth), widened(values, depth))

    def test_palettes(self):
        for depth in (1, 2, 4, 8):
            palette = random_values(3 << depth, 8, seed=2)
            alphas = random_values((1 << depth) - 1, 8, seed=3)
            values = random_values(PIXELS, depth)
            colours = [palette[3 * v:3 * v + 3] for v in values]
            with self.subTest(depth=depth):
                self.check(make_png(WIDTH, HEIGHT, PALETTE, depth, values, palette), "rgb", 8, sum(colours, []))
                expected = sum(([*c, (alphas + [255])[v]] for c, v in zip(colours, values)), [])
                self.check(make_png(WIDTH, HEIGHT, PALETTE, depth, values, palette, alphas), "rgba", 8, expected)

    def test_transparent_colours(self):
        for colour, letters, depth in ((GREY, "la", 2), (GREY, "la", 8), (GREY, "la", 16), (RGB, "rgba", 8), (RGB, "rgba", 16)):
            with self.subTest(colour=colour, depth=depth):
                count = CHANNELS[colour]
                values = random_values(PIXELS * count, depth)
                key = values[3 * count:4 * count]
                expected = []
                for i in range(0, len(values), count):
                    pixel = values[i:i + count]
                    expected += widened(pixel, depth) + [0 if pixel == key else (1 << max(8, depth)) - 1]
                content = make_png(WIDTH, HEIGHT, colour, depth, values, transparent=struct.pack(f">{count}H", *key))
                self.check(content, letters, max(8, depth), expected)

    def test_a_gamma_of_one_means_linear(self):
        values = random_values(PIXELS * 3, 8)
        gamma = chunk(b"gAMA", struct.pack(">I", 100000))
        srgb = chunk(b"sRGB", b"\0")
        for extra, space in ((gamma, 0), (gamma + srgb, 1), (chunk(b"gAMA", struct.pack(">I", 45455)), 1)):
            with self.subTest(extra=extra):
                self.check(make_png(WIDTH, HEIGHT, RGB, 8, values, extra=extra), "rgb", 8, values, space)

    def test_content_decides_before_the_extension(self):
        self.write("picture.dat", make_png(WIDTH, HEIGHT, GREY, 8, random_values(PIXELS, 8)))
        self.assertIn("PNG picture", self.succeed("info", "picture.dat"))


class DamagedPngs(ProgramTest):
    def setUp(self):
        super().setUp()
        self.good = make_png(WIDTH, HEIGHT, RGB, 8, random_values(PIXELS * 3, 8))

    def check(self, content, pattern):
        self.write("bad.png", content)
        self.refuse(1, "bad.png: " + pattern, "convert", "bad.png", "out.zor")

    def test_cut_at_every_length(self):
        for size in range(len(self.good)):
            with self.subTest(size=size):
                self.check(self.good[:size], "(is a damaged PNG|is not a PNG)")

    def test_every_byte_flipped(self):
        for position in range(len(self.good)):
            content = bytearray(self.good)
            content[position] ^= 0x5A
            with self.subTest(position=position):
                self.check(content, "(is a damaged PNG|is not a PNG)")

    def test_lies(self):
        idat = chunk(b"IDAT", zlib.compress(bytes(200)))
        end = chunk(b"IEND", b"")

        def with_header(width, height, depth, colour, data=idat):
            return PNG_SIGNATURE + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0, 0)) + data + end

        for name, content in {
            "no width": with_header(0, 5, 8, RGB),
            "a width of all ones": with_header(0xFFFFFFFF, 5, 8, RGB),
            "more than can be counted": with_header(900000, 900000, 16, RGBA),
            "much more than the file can hold": with_header(60000, 17000, 8, RGBA),
            "a depth that the colour lacks": with_header(5, 5, 4, RGB),
            "no such colour": with_header(5, 5, 8, 5),
            "no palette": with_header(5, 5, 8, PALETTE),
            "too few rows": with_header(30, 30, 8, RGB),
            "no data": with_header(5, 5, 8, RGB, b""),
            "data that is no deflate stream": with_header(5, 5, 8, RGB, chunk(b"IDAT", b"nonsense" * 20)),
            "no end": with_header(5, 5, 8, RGB)[:-12],
        }.items():
            with self.subTest(name):
                self.check(content, "(is a damaged PNG|the picture is too large)")


if __name__ == "__main__":
    main()
