"""ASTC through the real codec: pictures and volumes there and back, and the program astcenc by itself."""

import json
import math
import resource
import shutil
import struct

from zortex_testing import *

ASTCENC = os.environ["ZORT_ASTCENC"]
FLAT = "4x4 5x4 5x5 6x5 6x6 8x5 8x6 8x8 10x5 10x6 10x8 10x10 12x10 12x12".split()
DEEP = "3x3x3 4x3x3 4x4x3 4x4x4 5x4x4 5x5x4 5x5x5 6x5x5 6x6x5 6x6x6".split()


def psnr(one, other):
    assert len(one) == len(other)
    error = sum((a - b) ** 2 for a, b in zip(one, other)) / len(one)
    return 10 * math.log10(255 * 255 / error) if error else math.inf


class AstcTest(ProgramTest):
    def setUp(self):
        super().setUp()
        os.mkdir(self.path("tmp"))
        os.environ["TMPDIR"] = self.path("tmp")

    def tearDown(self):
        self.assertEqual(os.listdir(self.path("tmp")), [])


class Conversion(AstcTest):
    def volume_there_and_back(self, name, pixels, width, height, depth, *options):
        """The PSNR that was printed, and the one worked out here."""
        self.write("volume.zor", make_native(RGBA8888, width, height, pixels, depth=depth))
        report = json.loads(self.succeed("convert", "volume.zor", "a.zor", "--format", "astc-" + name, "--json", *options))
        self.succeed("convert", "a.zor", "back.zor", "--format", "rgba8888", "--quiet")
        return report["psnr"]["db"], psnr(read_native(self.read("back.zor"))[1], pixels)

    def test_photograph(self):
        with open(PHOTO, "rb") as file:
            original = read_png(file.read())[4]
        figures = []
        for name, quality in (("4x4", "fast"), ("6x6", "high"), ("6x6", "0"), ("12x12", "normal")):
            for space in ("linear", "srgb"):
                self.succeed("convert", PHOTO, "a.zor", "--format", "astc-" + name, "--quality", quality, "--space", space,
                             "--input-space", space, "--quiet")
                self.succeed("convert", "a.zor", "back.png", "--quiet")
                values = read_png(self.read("back.png"))[4]
                self.assertEqual(set(values[3::4]), {255})
                del values[3::4]
                figures.append(psnr(values, original))
                print(f"{name} {quality} {space}: {figures[-1]:.2f} dB")
        self.assertEqual(figures[::2], sorted(figures[::2], reverse=True))
        self.assertEqual(figures[1::2], sorted(figures[1::2], reverse=True))
        self.assertGreater(figures[0], 43)
        self.assertGreater(min(figures), 30)

    def test_volume(self):
        pixels = volume_of_photo(32, 24, 8)
        for name, least in (("3x3x3", 38), ("6x6x6", 28), ("4x4", 42), ("12x12", 28)):
            printed, figure = self.volume_there_and_back(name, pixels, 32, 24, 8)
            print(f"{name}: {figure:.2f} dB")
            self.assertGreater(figure, least)
            self.assertAlmostEqual(printed, figure, places=6)

    def test_every_format(self):
        # A volume whose sides are no whole blocks, in one steep ramp.
        width, height, depth = 13, 7, 5
        ramp = [x * 12 + y * 10 + z * 9 for z in range(depth) for y in range(height) for x in range(width)]
        pixels = bytes(v for grey in ramp for v in (grey, grey + 15, 255 - grey, 255))
        for name in FLAT + DEEP:
            self.assertGreater(self.volume_there_and_back(name, pixels, width, height, depth, "--quality", "fast")[1], 20, name)

    def test_levels_smaller_than_a_block(self):
        self.succeed("convert", PHOTO, "a.ktx", "--resize", "32x16", "--mips", "--format", "astc-8x5")
        self.succeed("view", "a.ktx", "view.png")
        self.succeed("convert", "a.ktx", "last.png", "--mip", "5")
        self.assertEqual(read_png(self.read("last.png"))[:2], (1, 1))

    def test_without_the_program(self):
        # A copy of the program, which has no helpers beside it.
        shutil.copy(ZORTEX, self.path("alone"))
        environment = dict(os.environ, PATH=self.path("no_such_folder"))
        result = subprocess.run([self.path("alone"), "convert", PHOTO, "a.zor", "--format", "astc-4x4"], cwd=self.folder,
                                capture_output=True, text=True, timeout=60, env=environment)
        self.assertEqual((result.returncode, os.path.exists(self.path("a.zor"))), (1, False))
        self.assertIn("astcenc, which does it, is not on the search path", result.stderr)


class Program(AstcTest):
    def astcenc(self, *arguments, **options):
        return subprocess.run([ASTCENC, *arguments], cwd=self.folder, capture_output=True, text=True, timeout=60, **options)

    def refused(self, *arguments, **options):
        result = self.astcenc(*arguments, **options)
        self.assertIn(result.returncode, (1, 2), arguments)
        self.assertRegex(result.stderr, r"\Aastcenc: ", arguments)

    def make_files(self):
        self.write("a.zor", make_native(RGBA8888, 13, 7, bytes(range(128, 219)) * 4))
        self.succeed("convert", "a.zor", "a.ktx")
        self.assertEqual(self.astcenc("-c", "a.ktx", "a.astc", "6x5", "-fast").returncode, 0)

    def test_its_files(self):
        self.make_files()
        self.assertEqual(self.read("a.astc")[:16], bytes([0x13, 0xAB, 0xA1, 0x5C, 6, 5, 1, 13, 0, 0, 7, 0, 0, 1, 0, 0]))
        self.assertEqual(len(self.read("a.astc")), 16 + 3 * 2 * 16)
        for switch in ("-dl", "-ds"):
            self.assertEqual(self.astcenc(switch, "a.astc", "b.ktx").returncode, 0)
            info = json.loads(self.succeed("info", "b.ktx", "--json"))
            self.assertEqual((info["format"], info["colourSpace"], info["width"], info["height"]), ("rgba8888", "linear", 13, 7))

    def test_other_command_lines(self):
        self.make_files()
        for arguments in ("", "-c", "-c a.ktx b.astc 6x5", "-c a.ktx b.astc 6x5 -best", "-c a.ktx b.astc 7x7 -fast", "-c a.ktx b.astc 4x4x1 -fast",
                          "-c a.ktx b.astc 6x5 -fast -silent", "-cl a.ktx b.astc 6x5 -fast", "-c a.zor b.astc 6x5 -fast", "-c a.ktx b.ktx 6x5 -fast",
                          "-dl a.astc", "-dl a.astc b.png", "-dh a.astc b.ktx", "-dl a.ktx b.ktx", "--version"):
            self.refused(*arguments.split())
            self.assertFalse(os.path.exists(self.path("b.astc")) or os.path.exists(self.path("b.ktx")), arguments)

    def test_files_that_it_refuses(self):
        self.make_files()
        self.succeed("convert", PHOTO, "deep.ktx", "--format", "rgba16")
        self.succeed("convert", PHOTO, "chain.ktx", "--format", "rgba8888", "--mips")
        for name in ("short", "none", "deep", "chain"):
            if name == "short":
                self.write("short.ktx", self.read("a.ktx")[:-1])
            self.refused("-c", name + ".ktx", "b.astc", "6x5", "-fast")
        self.assertFalse(os.path.exists(self.path("b.astc")))
        self.write("short.astc", self.read("a.astc")[:-1])
        # Few blocks, and more pixels than 32 bits count.
        self.write("huge.astc", struct.pack("<I12B", 0x5CA1AB13, 12, 12, 1, *b"\xff\xff\xff" * 3))
        self.write("empty.astc", struct.pack("<I12B", 0x5CA1AB13, 4, 4, 1, 0, 0, 0, 4, 0, 0, 1, 0, 0) + bytes(16))
        for name in ("short", "none", "huge", "empty"):
            self.refused("-dl", name + ".astc", "b.ktx")
        self.assertFalse(os.path.exists(self.path("b.ktx")))

    def test_full_disk(self):
        self.make_files()
        limit = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100)),
                 "restore_signals": False}  # Python ignores the limit's signal, and so shall its child
        self.refused("-c", "a.ktx", "b.astc", "6x5", "-fast", **limit)
        self.refused("-dl", "a.astc", "b.ktx", **limit)
        self.assertEqual([name for name in os.listdir(self.folder) if name.startswith("b.")], [])


if __name__ == "__main__":
    if not ASTCENC:
        print("astcenc is not built")
        sys.exit(77)
    main()
