"""Command lines that are wrong, files that are in the way, and what is left behind: nothing."""

import json
import os
import random
import resource
import signal

from zortex_testing import *


class CommandLine(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("a.png", make_png(12, 6, RGB, 8, [i & 255 for i in range(12 * 6 * 3)]))

    def test_wrong_command_lines(self):
        convert = ("convert", "a.png", "b.zor")
        for arguments, pattern in (
            ((), "A subcommand is required"),
            (("explode",), ".*"),
            (("convert", "a.png"), "convert: an input file and an output file are needed"),
            (("info",), "FILE is required"),
            ((*convert, "c.zor"), "convert: an input file and an output file"),
            ((*convert, "--nonsense"), ".*--nonsense"),
            ((*convert, "--format"), ".*--format"),
            ((*convert, "--format", "rgbz8888"), "--format: unknown format 'rgbz8888'"),
            ((*convert, "--format", "rgb8.8"), "--format: unknown"),
            ((*convert, "--format", "rgb555"), "--format: rgb555 .*15 bits"),
            ((*convert, "--format", "rr88"), "--format: .*twice"),
            ((*convert, "--format", "rgba64"), "--format: .*unknown|--format: .*"),
            ((*convert, "--format", "bc7"), "--format: bc7 cannot be encoded so far"),
            ((*convert, "--type", "unorm9"), "--type: unknown channel type 'unorm9'"),
            ((*convert, "--format", "rgba8888", "--type", "float"), "--type: .*16 or 32 bits"),
            ((*convert, "--format", "r16f", "--type", "unorm16"), "--type: r16f has the channel type float"),
            ((*convert, "--format", "uyvy", "--type", "snorm8"), "--type: uyvy cannot have"),
            ((*convert, "--space", "cmyk"), "--space"),
            ((*convert, "--input-space", "cmyk"), "--input-space"),
            ((*convert, "--format", "tessel1-4bpp-rgb", "--quality", "1000"), "--quality: tessel1-4bpp-rgb has the qualities 0 to"),
            ((*convert, "--format", "uyvy", "--quality", "1"), "--quality: uyvy has the quality 0 only"),
            ((*convert, "--quality", "lovely"), "--quality: 'lovely'"),
            ((*convert, "--quality", "-1"), ".*"),
            ((*convert, "--resize", "10"), "--resize: '10' is no size"),
            ((*convert, "--resize", "0x10"), "--resize"),
            ((*convert, "--resize", "10x10x"), "--resize"),
            ((*convert, "--resize", "10x10x2x2"), "--resize"),
            ((*convert, "--resize", "99999999999x1"), "--resize"),
            ((*convert, "--filter", "soft"), "--filter: 'soft'"),
            ((*convert, "--face", "x"), ".*--face"),
            (("convert", "a.png", "b.jpg"), "b.jpg: the output's extension must be one of"),
            (("convert", "a.png", "b"), "b: the output's extension must be one of"),
            (("convert", "a.png", "b.png", "--format", "tessel1-4bpp-rgb"), "--format: a PNG file holds"),
            (("convert", "a.png", "b.png", "--format", "rgb565"), "--format: a PNG file holds"),
        ):
            with self.subTest(arguments):
                self.refuse(2, pattern, *arguments)

    def test_sizes_that_a_codec_refuses(self):
        for name, pattern in (
            ("tessel1-2bpp-rgb", "tessel1-2bpp-rgb needs sides that are powers of two, not 12x6; try --resize 16x8"),
            ("tessel1-4bpp-rgba", "tessel1-4bpp-rgba needs sides .* --resize 16x8"),
            ("bw1bpp", "bw1bpp needs widths that are multiples of 8, not 12; try --resize 16x6"),
        ):
            with self.subTest(name):
                self.refuse(1, "a.png: " + pattern, "convert", "a.png", "b.zor", "--format", name)
                self.succeed("convert", "a.png", "good.zor", "--format", name, "--resize", pattern.split()[-1])

    def test_help_and_version(self):
        for arguments, words in (
            (("--help",), ("convert", "info", "formats", "zortex convert photo.png")),
            (("convert", "--help"), ("--format", "--resize WxH[xD]", "--premultiply", "Examples:")),
            (("--version",), ("zortex ",)),
        ):
            with self.subTest(arguments):
                text = self.succeed(*arguments)
                for word in words:
                    self.assertIn(word, text)

    def test_formats(self):
        formats = json.loads(self.succeed("formats", "--json"))
        text = self.succeed("formats")
        self.assertEqual(len(formats["compressed"]), 51)
        self.assertEqual(sorted(row["id"] for row in formats["compressed"]), list(range(51)))
        for row in formats["compressed"] + formats["exampleLayouts"]:
            self.assertIn("\n" + row["name"] + " ", text)
            if row["encoded"]:
                self.succeed("convert", "a.png", "b.zor", "--format", row["name"], "--resize", "16x16", "--quality", "fast")
                info = json.loads(self.succeed("info", "b.zor", "--json"))
                self.assertEqual((info["format"], info["channelType"]), (row["name"], row["defaultType"]))


class Files(ProgramTest):
    def setUp(self):
        super().setUp()
        self.picture = make_png(64, 64, RGB, 8, list(random.Random(1).randbytes(64 * 64 * 3)))
        self.write("a.png", self.picture)

    def test_inputs(self):
        os.mkdir(self.path("folder.png"))
        for command in (("convert", "{}", "b.zor"), ("info", "{}")):
            for name, pattern in (("missing.png", "missing.png: cannot be opened: No such file"), ("folder.png", "folder.png: is a directory"),
                                  ("missing/a.zor", "missing/a.zor: cannot be opened")):
                with self.subTest(command=command, name=name):
                    self.refuse(1, pattern, *[part.format(name) for part in command])

    def test_outputs(self):
        os.mkdir(self.path("folder.zor"))
        os.mkdir(self.path("folder.png"))
        for extension in ("zor", "png"):
            self.refuse(1, f"folder.{extension}: is a directory", "convert", "a.png", f"folder.{extension}")
            self.refuse(1, f"no/b.{extension}: cannot be written: No such file", "convert", "a.png", f"no/b.{extension}")
        os.symlink("target.zor", self.path("link.zor"))
        self.write("target.zor", b"old")
        self.succeed("convert", "a.png", "link.zor")
        self.assertTrue(os.path.islink(self.path("link.zor")))
        self.assertEqual(len(self.read("target.zor")), 52 + 64 * 64 * 3)

    def test_input_and_output_may_be_one_file(self):
        self.succeed("convert", "a.png", "a.png", "--format", "l8")
        self.assertEqual(read_png(self.read("a.png"))[2], GREY)
        self.assertEqual(self.files(), ["a.png"])

    def test_a_full_disk(self):
        """Files are limited to less than the output takes: inside the pixels, inside the header, nothing at all."""

        def limit(size):
            def apply():
                signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
                resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))

            return apply

        for name in ("b.zor", "b.png"):
            for old in (None, b"old content"):
                if old is not None:
                    self.write(name, old)
                for size in (8192, 30, 0):
                    with self.subTest(name=name, old=old, size=size):
                        self.refuse(1, f"{name}: cannot be written: ", "convert", "a.png", name, preexec_fn=limit(size))

    def test_standard_output_that_is_full(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("no /dev/full")
        with open("/dev/full", "w") as full:
            result = subprocess.run([ZORTEX, "formats"], stdout=full, stderr=subprocess.PIPE, text=True)
        self.assertEqual((result.returncode, result.stderr), (1, "zortex: standard output: cannot be written\n"))


if __name__ == "__main__":
    main()
