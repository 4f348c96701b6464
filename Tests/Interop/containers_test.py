"""Our containers and the same ones of other software: what we write they read, what they write we read.

Each class needs one tool. Without it all of its tests are skipped, and the exit code is 77 when nothing else ran."""

import json
import os
import re
import shutil
import struct
import subprocess
import sys
import unittest

from zortex_testing import *

try:
    from PIL import Image
except ImportError:
    Image = None

# The rows of most formats have no whole number of words.
WIDTH, HEIGHT = 5, 3
DXT1, DXT5, ASTC_6X5 = 7, 11, 30
ARGB8888 = layout("argb", 8, 8, 8, 8)
UNORM32 = 8


def find_tool(names, pattern):
    """The first of these programs whose version text has the pattern: others may go by the same name."""
    for name in names:
        path = shutil.which(name)
        if path:
            text = subprocess.run([path, "-version"], capture_output=True, text=True, timeout=60).stdout
            if re.search(pattern, text):
                return path
    return None


def gradient(width, height):
    """RGBA pixels, no two of them and no two channels alike, for up to 13 by 7 of them."""
    return [(x * 18 + y, y * 35 + x, 255 - x * 15 - y * 10, 255 - (x + y * width) * 11 % 256) for y in range(height) for x in range(width)]


def png_of(width, height, pixels, colour=RGBA):
    return make_png(width, height, colour, 8, [value for pixel in pixels for value in pixel[:CHANNELS[colour]]])


def reduced(value, bits):
    """A channel value after storage in so many bits, as a real number of 0 to 255."""
    levels = (1 << bits) - 1
    return int(value / 255 * levels + 0.5) / levels * 255


class ToolTest(ProgramTest):
    tool = None

    def setUp(self):
        if not self.tool:
            self.skipTest(f"what {type(self).__name__} compares with is not installed")
        super().setUp()

    def run_tool(self, *arguments):
        result = subprocess.run([self.tool, *arguments], cwd=self.folder, capture_output=True, timeout=120)
        self.assertEqual(result.returncode, 0, f"{arguments}: {result.stderr}")
        return result.stdout

    def info(self, name):
        return json.loads(self.succeed("info", name, "--json"))

    def native_pixels(self, name):
        """What the program finds in a file, without any conversion."""
        self.succeed("convert", name, "as_read.zor", "--quiet")
        return read_native(self.read("as_read.zor"))[1]


class ReadsOurDds:
    """Mixed into the test of each program that reads DDS files; `decode` gives RGBA pixels."""

    # Bits of red, green, blue and alpha; 0 is a channel that the format does not have.
    formats = {}

    def assert_near(self, got, expected, tolerance):
        self.assertEqual(len(got), len(expected))
        for index, (one, other) in enumerate(zip(got, expected)):
            for channel in range(4):
                self.assertLessEqual(abs(one[channel] - other[channel]), tolerance, f"pixel {index}: {one}, not {other}")

    def test_uncompressed(self):
        pixels = gradient(WIDTH, HEIGHT)
        self.write("a.png", png_of(WIDTH, HEIGHT, pixels))
        for name, bits in self.formats.items():
            with self.subTest(name):
                self.succeed("convert", "a.png", "a.dds", "--format", name)
                expected = [tuple(reduced(v, b) if b else 255 for v, b in zip(pixel, bits)) for pixel in pixels]
                # Widening few bits to 8 is done in more than one way; 8 bits are exact.
                self.assert_near(self.decode("a.dds", WIDTH, HEIGHT), expected, 1 if min(b or 8 for b in bits) < 8 else 0)

    def test_luminance(self):
        # A grey scale: its luminance is itself.
        pixels = [(v, v, v, 255) for v in range(0, WIDTH * HEIGHT * 17, 17)]
        self.write("a.png", png_of(WIDTH, HEIGHT, pixels, GREY))
        self.succeed("convert", "a.png", "a.dds", "--format", "l8")
        self.assertEqual(self.decode("a.dds", WIDTH, HEIGHT), pixels)

    def test_blocks_of_one_colour(self):
        # Two endpoints, then 16 indices of two bits: 0 is the first endpoint, 1 the second. Two blocks side by side.
        red = struct.pack("<HHI", 0xF800, 0x001F, 0)
        green = struct.pack("<HHI", 0xFFFF, 0x07E0, 0x55555555)
        # Two alphas, then 16 indices of three bits, all 0 or all 1.
        alpha_200 = struct.pack("<BB6s", 200, 55, bytes(6))
        alpha_51 = struct.pack("<BB6s", 255, 51, int("001" * 16, 2).to_bytes(6, "little"))
        for name, number, blocks, alphas in (
            ("dxt1", DXT1, red + green, (255, 255)),
            ("dxt5", DXT5, alpha_200 + red + alpha_51 + green, (200, 51)),
        ):
            with self.subTest(name):
                self.write("a.zor", make_native(number, 8, 4, blocks))
                self.succeed("convert", "a.zor", "a.dds")
                self.assertEqual(self.decode("a.dds", 8, 4), ([(255, 0, 0, alphas[0])] * 4 + [(0, 255, 0, alphas[1])] * 4) * 4)


class Pillow(ReadsOurDds, ToolTest):
    tool = Image
    # The 8 bits a channel of the extended header too, which ImageMagick does not read.
    formats = {"argb8888": (8, 8, 8, 8), "rgba8888": (8, 8, 8, 8), "rgb888": (8, 8, 8, 0)}

    def decode(self, name, width, height):
        with Image.open(self.path(name)) as image:
            self.assertEqual(image.size, (width, height))
            return list(image.convert("RGBA").getdata())


class ImageMagick(ReadsOurDds, ToolTest):
    tool = find_tool(("convert-im6.q16", "convert-im7.q16", "magick", "/usr/bin/convert", "convert"), r"\AVersion: ImageMagick")
    formats = {
        "argb8888": (8, 8, 8, 8),
        "rgb888": (8, 8, 8, 0),
        "rgb565": (5, 6, 5, 0),
        "argb1555": (5, 5, 5, 1),
        "argb4444": (4, 4, 4, 4),
    }

    def decode(self, name, width, height):
        raw = self.run_tool(name, "-depth", "8", "rgba:-")
        self.assertEqual(len(raw), width * height * 4, name)
        return list(struct.iter_unpack("4B", raw))

    def test_faces_of_a_cube_map(self):
        faces = [(x, 255 - x, x * 3, 255) for x in range(0, 60, 10)]
        blue_first = b"".join(bytes((b, g, r, a)) * 16 for r, g, b, a in faces)
        self.write("a.zor", make_native(ARGB8888, 4, 4, blue_first, channel_type=UNORM32, faces=6))
        self.succeed("convert", "a.zor", "a.dds")
        self.assertEqual(self.decode("a.dds", 4, 24), [face for face in faces for _ in range(16)])

    def test_its_uncompressed_files(self):
        for colour, name, bits in ((RGBA, "argb8888", 32), (RGB, "rgb888", 24)):
            with self.subTest(name):
                pixels = gradient(8, 4)
                self.write("a.png", png_of(8, 4, pixels, colour))
                self.run_tool("a.png", "-define", "dds:compression=none", "a.dds")
                info = self.info("a.dds")
                self.assertEqual((info["format"], info["width"], info["height"], len(info["levels"])), (name, 8, 4, 4))
                self.assertEqual(self.native_pixels("a.dds"), self.read("a.dds")[128:])
                self.succeed("convert", "a.dds", "b.png")
                self.assertEqual(read_png(self.read("b.png"))[:5], read_png(self.read("a.png"))[:5])

    def test_it_decodes_our_blocks_as_we_do(self):
        # It divides by three where we take 42 and 22 of 64, which is nowhere more than three levels apart.
        for name, picture in (("dxt1", "astronaut_256"), ("dxt1", "alpha_cutout_256"), ("dxt3", "alpha_smooth_256"),
                              ("dxt5", "alpha_smooth_256"), ("dxt5", "graphics_512x256")):
            with self.subTest(name, picture=picture):
                self.succeed("convert", os.path.join(DATA, picture + ".png"), "a.dds", "--format", name)
                self.succeed("convert", "a.dds", "b.zor", "--format", "rgba8888")
                header, ours = read_native(self.read("b.zor"))
                theirs = b"".join(map(bytes, self.decode("a.dds", header["width"], header["height"])))
                self.assertLessEqual(max(abs(a - b) for a, b in zip(ours, theirs)), 3)
                self.assertEqual(ours[3::4], theirs[3::4])

    def test_its_compressed_files(self):
        for compression, block_bytes in (("dxt1", 8), ("dxt5", 16)):
            with self.subTest(compression):
                self.write("a.png", png_of(8, 4, gradient(8, 4)))
                self.run_tool("a.png", "-define", f"dds:compression={compression}", "a.dds")
                info = self.info("a.dds")
                self.assertEqual((info["format"], info["width"], info["height"], len(info["levels"])), (compression, 8, 4, 4))
                # Two blocks, and one for each smaller level.
                pixels = self.native_pixels("a.dds")
                self.assertEqual((len(pixels), pixels), (5 * block_bytes, self.read("a.dds")[128:]))


class Astcenc(ToolTest):
    # Some packages name the program after the instructions that it uses.
    tool = find_tool(["astcenc"] + ["astcenc-" + kind for kind in ("native", "none", "sse2", "sse4.1", "avx2", "neon")], r"\Aastcenc v")

    def setUp(self):
        super().setUp()
        self.pixels = gradient(13, 7)
        self.write("a.png", png_of(13, 7, self.pixels))

    def encode(self, source, target, profile="-cl"):
        self.run_tool(profile, source, target, "6x5", "-fast", "-silent")

    def decode(self, name):
        self.run_tool("-dl", name, "decoded.png", "-silent")
        return read_png(self.read("decoded.png"))[:5]

    def test_it_reads_our_ktx(self):
        # The same blocks come out of the PNG file and of our copy of it: it found the same pixels.
        self.succeed("convert", "a.png", "a.ktx", "--format", "rgba8888")
        self.encode("a.png", "png.astc")
        self.encode("a.ktx", "ktx.astc")
        self.assertEqual(self.read("ktx.astc"), self.read("png.astc"))

    def test_its_astc_files_through_ours(self):
        self.encode("a.png", "a.astc")
        whole = self.read("a.astc")
        pixels = self.native_pixels("a.astc")
        header = read_native(self.read("as_read.zor"))[0]
        self.assertEqual((header["format"], header["width"], header["height"]), (ASTC_6X5, 13, 7))
        self.assertEqual((len(pixels), pixels), (3 * 2 * 16, whole[16:]))
        # Into both containers that it reads, by way of ours.
        self.succeed("convert", "as_read.zor", "b.astc")
        self.assertEqual(self.read("b.astc"), whole)
        self.succeed("convert", "as_read.zor", "b.ktx")
        self.assertEqual(self.decode("b.ktx"), self.decode("a.astc"))

    def test_its_compressed_ktx_files(self):
        self.encode("a.png", "a.astc")
        for profile, space in (("-cl", "linear"), ("-cs", "srgb")):
            with self.subTest(space):
                self.encode("a.png", "a.ktx", profile)
                info = self.info("a.ktx")
                self.assertEqual((info["format"], info["colourSpace"], info["width"], info["height"]), ("astc-6x5", space, 13, 7))
                self.assertEqual(self.native_pixels("a.ktx"), self.read("a.ktx")[-6 * 16:])

    def test_its_decoded_ktx_files(self):
        self.encode("a.png", "a.astc")
        self.run_tool("-dl", "a.astc", "a.ktx", "-silent")
        self.assertEqual(self.info("a.ktx")["format"], "rgba8888")
        self.assertEqual(list(self.native_pixels("a.ktx")), self.decode("a.astc")[4])


class CHeader(ToolTest):
    tool = os.environ["CXX"]

    def build_and_run(self, language, standard, source, *options):
        self.write("main.txt", source.encode())
        self.run_tool("-x", language, f"-std={standard}", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "main.txt", "-x", "none", "-o",
                      "program", *options)
        subprocess.run([self.path("program")], cwd=self.folder, check=True, timeout=60)

    def test_it_compiles_and_holds_the_file(self):
        self.write("a.png", png_of(WIDTH, HEIGHT, gradient(WIDTH, HEIGHT)))
        self.succeed("convert", "a.png", "pic.zor")
        self.succeed("convert", "a.png", "pic.h")
        for language, standard in (("c", "c99"), ("c++", "c++17")):
            with self.subTest(language):
                self.build_and_run(language, standard, """
                    #include <stdio.h>
                    #include "pic.h"
                    int main(void)
                    {
                        FILE* file = fopen("array.zor", "wb");
                        return fwrite(pic, sizeof(pic), 1, file) != 1 || fclose(file) != 0;
                    }""")
                self.assertEqual(self.read("array.zor"), self.read("pic.zor"))

    def test_a_file_name_that_is_no_name_in_c(self):
        self.write("a.png", png_of(WIDTH, HEIGHT, gradient(WIDTH, HEIGHT)))
        for name, is_good in (("pic_1.h", True), ("_9.old.h", True), ("pic-1.h", False), ("1pic.h", False), ("a b.h", False)):
            with self.subTest(name):
                self.assertEqual("does not compile" in self.succeed("convert", "a.png", name), not is_good)

    def test_it_loads_from_memory(self):
        whole = make_native(layout("rgb", 8, 8, 8), 3, 2, range(18), blocks=[(7, 1, bytes(range(40)))])
        self.write("pic.zor", whole)
        self.succeed("convert", "pic.zor", "pic.h")
        library = os.environ["ZORT_LIBRARY"]
        self.build_and_run("c++", "c++17", """
            #include <ZORTexLib.h>
            #include "pic.h"
            int main()
            {
                const zortexture::CZORTexture texture(static_cast<const void*>(pic));
                return texture.isDataComplete() && texture.saveFile("memory.zor") ? 0 : 1;
            }""", "-isystem", os.environ["ZORT_INCLUDE"], library, "-Wl,-rpath," + os.path.dirname(library), "-pthread")
        self.assertEqual(self.read("memory.zor"), whole)


if __name__ == "__main__":
    outcome = unittest.main(verbosity=2, exit=False).result
    nothing_ran = outcome.skipped and len(outcome.skipped) >= outcome.testsRun
    sys.exit(1 if not outcome.wasSuccessful() else 77 if nothing_ran else 0)
