"""Native files: what info tells of them, damaged ones, and the images that a PNG file is made of."""

import json
import struct

from zortex_testing import *

RGB888 = layout("rgb", 8, 8, 8)
L8 = layout("l", 8)


class Info(ProgramTest):
    def info(self, content):
        self.write("a.zor", content)
        text = self.succeed("info", "a.zor")
        return json.loads(self.succeed("info", "a.zor", "--json")), text

    def test_shape_and_flags(self):
        # 4x2, 2x1, 1x1: 11 pixels in each of 2 x 6 images.
        content = make_native(RGB888, 4, 2, bytes(11 * 3 * 12), space=1, flags=2, surfaces=2, faces=6, levels=3)
        info, text = self.info(content)
        expected = {"format": "rgb888", "compressed": False, "channelType": "unorm8", "colourSpace": "srgb", "bitsPerPixel": 24,
                    "width": 4, "height": 2, "depth": 1, "mipLevels": 3, "surfaces": 2, "faces": 6, "premultiplied": True,
                    "fileCompressed": False, "dataBytes": 396, "loadable": True, "fileBytes": len(content)}
        self.assertEqual(expected, {key: info[key] for key in expected})
        self.assertEqual([(level["width"], level["height"], level["imageBytes"]) for level in info["levels"]],
                         [(4, 2, 24), (2, 1, 6), (1, 1, 3)])
        for word in ("rgb888", "unorm8", "srgb", "4x2x1", "396 bytes"):
            self.assertIn(word, text)

    def test_metadata(self):
        blocks = [(MAGIC, 0, struct.pack("<2f", 0.5, float("nan"))), (MAGIC, 1, struct.pack("<f", 2.5) + b"xyz\0"), (MAGIC, 2, b"XxYyZz"),
                  (MAGIC, 3, b"\1\2\0"), (MAGIC, 4, struct.pack("<3I", 1, 2, 3)), (MAGIC, 5, bytes(7)), (0xDEADBEEF, 9, b"\x01\xfe\x1b")]
        info, text = self.info(make_native(L8, 2, 2, bytes(4 * 6), faces=6, blocks=blocks))
        self.assertEqual(info["atlas"], [0.5, "nan"])
        self.assertEqual(info["bumpMap"], {"scale": 2.5, "order": "xyz"})
        self.assertEqual(info["cubeOrder"], "XxYyZz")
        self.assertEqual(info["orientation"], {"x": "left", "y": "up", "z": "in"})
        self.assertEqual(info["border"], [1, 2, 3])
        self.assertEqual(info["metadata"][-1], {"fourCC": "0xdeadbeef", "key": 9, "bytes": 3, "data": "01fe1b"})
        self.assertEqual(len(info["metadata"]), 7)
        for word in ("scale 2.5", "XxYyZz", "left, up, in", "0xdeadbeef key 9", "01fe1b"):
            self.assertIn(word, text)

    def test_hostile_text_does_not_reach_the_terminal(self):
        _, text = self.info(make_native(L8, 1, 1, b"\0" * 6, faces=6, blocks=[(MAGIC, 2, b"\x1b[2J\xff\n"), (MAGIC, 1, bytes(4) + b"\x1b]")]))
        self.assertNotIn("\x1b", text)

    def test_compressed(self):
        info, _ = self.info(make_native(2, 8, 8, bytes(32)))
        self.assertEqual((info["format"], info["bitsPerPixel"], info["block"]), ("tessel1-4bpp-rgb", 4, [4, 4, 1]))
        info, _ = self.info(make_native(31, 12, 12, bytes(64)))
        self.assertEqual((info["format"], info["block"]), ("astc-6x6", [6, 6, 1]))
        self.assertAlmostEqual(info["bitsPerPixel"], 128 / 36)

    def test_no_format(self):
        info, _ = self.info(make_native(0x0808080800FF0172, 1, 1, bytes(4)))
        self.assertTrue(info["format"].startswith("0x"))


class DamagedNativeFiles(ProgramTest):
    def test_cut_at_every_length(self):
        whole = make_native(RGB888, 3, 2, range(18), blocks=[(MAGIC, 3, b"\0\2\0"), (7, 1, b"abc")])
        for size in range(len(whole)):
            with self.subTest(size=size):
                self.write("a.zor", whole[:size])
                self.refuse(1, "a.zor: is (cut short|neither)", "convert", "a.zor", "b.zor")
                if size < 52:
                    self.refuse(1, "a.zor: is (cut short|neither)", "info", "a.zor")
                else:
                    info = json.loads(self.succeed("info", "a.zor", "--json"))
                    self.assertEqual((info["loadable"], info["width"], info["height"]), (False, 3, 2))
                    self.assertRegex(info["problem"], f"cut short: {size} of {len(whole)} bytes")
        self.write("a.zor", whole)
        self.succeed("convert", "a.zor", "b.zor")
        self.assertEqual(self.read("b.zor"), whole)

    def test_lies(self):
        for name, content, pattern in (
            ("a product that wraps to few bytes", make_native(layout("rgba", 8, 8, 8, 8), 0x10000, 0x10000, bytes(64)), "more than 4 GiB"),
            ("sums that wrap", make_native(L8, 4, 4, bytes(64), surfaces=0x10000, faces=0x10001), "more than 4 GiB"),
            ("endless levels", make_native(L8, 4, 4, bytes(64), levels=0xFFFFFFFF), "header is damaged"),
            ("endless metadata", make_native(L8, 4, 4, bytes(64))[:48] + b"\xff" * 4 + bytes(64), "cut short"),
            ("no images", make_native(L8, 4, 4, bytes(64), surfaces=0), "no pixels"),
            ("no format", make_native(51, 4, 4, bytes(64)), "no pixels"),
            ("another byte order", make_native(L8, 1, 1, b"\0")[3::-1] + bytes(60), "other byte order"),
            ("another file", b"GIF89a" + bytes(60), "neither"),
            ("an empty file", b"", "neither"),
        ):
            with self.subTest(name):
                self.write("a.zor", content)
                self.refuse(1, ".*a.zor: .*" + pattern, "convert", "a.zor", "b.zor", "--format", "rgba8888")
                self.assertIn(self.run_program("info", "a.zor").returncode, (0, 1))

    def test_pixels_that_cannot_be_converted(self):
        for name, pixel_format, channel_type, size, pattern in (
            ("a codec that does not exist", 12, UNORM8, 8, "bc4, which cannot be decoded"),
            ("a channel twice", layout("rr", 8, 8), UNORM8, 32, "twice"),
            ("a channel type that does not exist", layout("rgba", 8, 8, 8, 8), 99, 64, "does not exist"),
            ("channels that overlap", layout("rgb", 8, 4, 4), UNORM8, 32, "cannot be mixed"),
        ):
            with self.subTest(name):
                self.write("a.zor", make_native(pixel_format, 4, 4, bytes(size), channel_type=channel_type))
                for output in ("b.zor", "b.png"):
                    self.refuse(1, "a.zor: .*" + pattern, "convert", "a.zor", output, *(["--format", "rgb888"]))

    def test_an_empty_metadata_block(self):
        self.write("a.zor", make_native(L8, 2, 2, bytes(4), blocks=[(7, 1, b"")]))
        self.assertEqual(json.loads(self.succeed("info", "a.zor", "--json"))["metadata"][0]["bytes"], 0)
        self.refuse(1, "b.zor: cannot be written: .*empty metadata", "convert", "a.zor", "b.zor")


class Images(ProgramTest):
    """One image of many goes into a PNG file."""

    def test_choice(self):
        # Two levels, two surfaces, six faces; every image has a number of its own in all of its pixels.
        images = [(level, surface, face) for level in range(2) for surface in range(2) for face in range(6)]
        pixels = b"".join(bytes([10 * level + 100 * surface + face]) * (8 >> (level * 2)) for level, surface, face in images)
        self.write("a.zor", make_native(L8, 4, 2, pixels, surfaces=2, faces=6, levels=2))
        for level, surface, face in images:
            with self.subTest(level=level, surface=surface, face=face):
                choice = ("--mip", str(level), "--surface", str(surface), "--face", str(face))
                self.succeed("convert", "a.zor", "b.png", *choice)
                width, height, _, _, values, _ = read_png(self.read("b.png"))
                self.assertEqual((width, height), (4 >> level, 2 >> level))
                self.assertEqual(set(values), {10 * level + 100 * surface + face})
        self.assertIn("12 images", self.succeed("convert", "a.zor", "b.png"))
        self.assertEqual(set(read_png(self.read("b.png"))[4]), {0})
        self.succeed("convert", "a.zor", "b.zor", "--face", "5", "--surface", "1")
        header, pixels = read_native(self.read("b.zor"))
        self.assertEqual((header["faces"], header["surfaces"], header["levels"], pixels), (1, 1, 1, bytes([105] * 8)))
        for option, count in (("--mip", 2), ("--surface", 2), ("--face", 6)):
            self.refuse(1, f"a.zor: has no .* {count}: there are {count}", "convert", "a.zor", "c.png", option, str(count))

    def test_slices(self):
        self.write("a.zor", make_native(L8, 2, 2, bytes(range(12)), depth=3))
        self.succeed("convert", "a.zor", "b.png", "--slice", "2")
        self.assertEqual(read_png(self.read("b.png"))[4], [8, 9, 10, 11])
        self.refuse(1, "a.zor: has no slice 3", "convert", "a.zor", "c.png", "--slice", "3")
        self.refuse(2, "--slice", "convert", "a.zor", "c.zor", "--slice", "1")


if __name__ == "__main__":
    main()
